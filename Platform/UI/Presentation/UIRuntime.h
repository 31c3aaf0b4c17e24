#pragma once

namespace virlo
{

/// Ends what the layer keeps for the life of the application object, in this order: presentations, running
/// animations, posted tasks, loaded views, the QML engine. Main thread.
class UIRuntime
{
public:
    /// Registers the end. Called before any of the above is made; further calls do nothing.
    static void begin();

private:
    static void end();
};

} // namespace virlo
