#pragma once

namespace virlo
{

/// The screen on which ads are shown, as far as images need to know it before a window is given.
class MainScreen
{
public:
    /// Pixels per point of the 1920 × 1080 canvas: of the largest visible window, or of the primary screen
    /// while none is visible; at least 1. Any thread.
    [[nodiscard]] static double scale();

    /// Looks at the windows again. Main thread.
    static void refresh();
};

} // namespace virlo
