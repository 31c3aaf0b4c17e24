#pragma once

namespace virlo
{

/// What the layer keeps as long as the application object lives: standing presentations, running animations,
/// loaded views, the QML engine. They end, in this order, when the application goes, however it goes. Main
/// thread.
class UIRuntime
{
public:
    /// Sees to the end; called by whatever makes something of the above, as often as it likes.
    static void begin();

private:
    static void end();
};

} // namespace virlo
