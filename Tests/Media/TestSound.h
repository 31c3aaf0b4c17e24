#pragma once

namespace virlo::test
{

/// The sound device of this program: GStreamer finds it before any other. It consumes the sound at its pace,
/// and can be pulled out.
class TestSound
{
public:
    static void install();
    /// Fails at its next buffer of sound, once.
    static void pullOut();
    /// Buffers since the program began that were not silence.
    [[nodiscard]] static int heard();
};

} // namespace virlo::test
