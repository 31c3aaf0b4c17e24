#pragma once

#include <functional>
#include <memory>
#include <vector>

class QQuickWindow;

namespace virlo
{

class PresentationStage;
class ViewController;

/// Shows a view controller over everything in a host's window, on a canvas of 1920 × 1080 points that is
/// scaled as a whole to the window, with black bars where the window's shape differs.
///
/// It takes every key, shortcut, pointer and touch event of the window; nothing reaches the host's items.
/// Arrows move the focus (held down, they repeat); Return, Enter, Space and Select are Select; Escape, Back
/// and Backspace are Menu; media play, pause and their toggle are PlayPause. When it ends, the focus returns
/// to the host's item that had it last, if that still exists and is visible, and everything made for the
/// presentation is destroyed.
///
/// It keeps itself and the controller alive until it ends. Operations may be called on any thread and inside
/// any callback or key event; handlers are called on the main thread, never on the caller's stack. A window
/// has one presentation at a time.
class WindowPresentation : public std::enable_shared_from_this<WindowPresentation>
{
public:
    static constexpr int canvasWidth = 1920;
    static constexpr int canvasHeight = 1080;

    enum class End {
        Dismissed,  ///< by `dismiss`
        WindowGone, ///< the window or the application ended underneath
        Refused     ///< no window or controller, one of them is in a presentation already, or the scene
                    ///< cannot be loaded; logged
    };

    struct Handlers {
        /// The first frame that shows the controller's view has been handed to the display, and
        /// `viewDidAppear` has been called. Not called where the presentation ends before.
        std::function<void()> didPresent;
        /// Called exactly once, last of all, the controller's disappearing calls before it.
        std::function<void(End)> didEnd;
    };

    /// Starts before it returns where called on the main thread, else in a later turn of its loop; until then
    /// `window` may be destroyed only on the main thread, after `dismiss`.
    static std::shared_ptr<WindowPresentation> present(std::shared_ptr<ViewController> controller,
                                                       QQuickWindow* window, Handlers handlers = {});

    ~WindowPresentation();

    /// Ends it, before it returns where called on the main thread. Later calls do nothing.
    void dismiss();
    /// Main thread: between its start and its end.
    [[nodiscard]] bool isPresented() const;

private:
    friend class UIRuntime;
    friend class ViewController;

    explicit WindowPresentation(Handlers handlers);
    void start(std::shared_ptr<ViewController> controller, QQuickWindow* window);
    void push(const std::shared_ptr<ViewController>& controller);
    /// Takes away `controller` and all above it; false where it is not above another one.
    bool pop(const ViewController& controller);
    void end(End reason);
    void didShowFirstFrame();
    static void endAll();

    Handlers m_handlers;
    std::shared_ptr<ViewController> m_controller;
    std::vector<std::shared_ptr<ViewController>> m_above; ///< lowest first
    std::unique_ptr<PresentationStage> m_stage;
    bool m_ended = false;
};

} // namespace virlo
