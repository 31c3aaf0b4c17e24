#pragma once

#include "Export.h"

#include <functional>
#include <memory>

class QQuickWindow;
class VIRLOAdViewController;

/// Puts an ad screen over a host's window: on a canvas of 1920 × 1080 points that is scaled as a whole, with
/// every key, until it is dismissed. Then the very item of the host that had the focus has it again.
namespace VIRLOAdPresenter
{
/// Returns at once; may be called from any thread, also inside the completion that brought the screen. The
/// screen and its presentation keep themselves alive until the end, the host need not hold the screen.
///
/// Where `screen` has no `adCompleted`, its dismissal is set there: Menu, the close button and an opened app
/// page then end the presentation. A host that sets its own calls `dismiss` itself.
///
/// `dismissed` is called exactly once, on the main thread, after the screen has left the window, also where
/// the window goes away underneath, and where nothing could be shown (no screen, no window, or another screen
/// stands over it: one line in the log says so). `window` must live until the main thread has come round to
/// showing the screen.
VIRLO_EXPORT void present(const std::shared_ptr<VIRLOAdViewController>& screen, QQuickWindow* window,
                          std::function<void()> dismissed = {});

/// Ends the screen's presentation, if there is one. Any thread.
VIRLO_EXPORT void dismiss(const std::shared_ptr<VIRLOAdViewController>& screen);
} // namespace VIRLOAdPresenter
