#pragma once

#include "Export.h"

#include <functional>
#include <memory>

class QQuickWindow;
class VIRLOAdViewController;

/// Presents an ad screen over a host's window, on a canvas of 1920 × 1080 points that is scaled as a whole.
/// The screen takes every key until it is dismissed; then the host's item that had the focus gets it back.
namespace VIRLOAdPresenter
{
/// Returns at once; may be called from any thread, also inside the completion that returned the screen. The
/// presentation keeps the screen alive until its end, the host need not hold it.
///
/// If `screen` has no `adCompleted`, its dismissal is set there: Menu, the close button and an opened app
/// page then end the presentation. A host that sets its own calls `dismiss` itself.
///
/// `dismissed` is called exactly once, on the main thread, after the screen has left the window, also if the
/// window is destroyed meanwhile, and if nothing could be shown (no screen, no window, or another screen is
/// shown over it: one line in the log says so). `window` must exist until the main thread shows the screen.
VIRLO_EXPORT void present(const std::shared_ptr<VIRLOAdViewController>& screen, QQuickWindow* window,
                          std::function<void()> dismissed = {});

/// Ends the screen's presentation, if there is one. Any thread.
VIRLO_EXPORT void dismiss(const std::shared_ptr<VIRLOAdViewController>& screen);
} // namespace VIRLOAdPresenter
