#pragma once

#include "Export.h"

#include <functional>
#include <mutex>

/// A ready ad screen, to be presented by the host (VIRLOAdPresenter.h). VIRLOAdController returns it and
/// keeps no reference: the screen belongs to its shared pointers. The last one may be released on any thread;
/// the screen and its objects are then destroyed on the main thread. Opening an item that the viewer has
/// chosen holds the screen until the app page or content is open. Any thread.
class VIRLO_EXPORT VIRLOAdViewController
{
public:
    using AdCompleted = std::function<void()>;

    virtual ~VIRLOAdViewController();
    VIRLOAdViewController(const VIRLOAdViewController&) = delete;
    VIRLOAdViewController& operator=(const VIRLOAdViewController&) = delete;

    /// Called when the ad is finished: on the main thread after Menu or its close button, on a worker after
    /// the viewer was sent to an app's page. It may be called more than once. The screen is shown until it is
    /// dismissed. If the host sets none, presenting sets the dismissal here.
    [[nodiscard]] AdCompleted adCompleted() const;
    void setAdCompleted(AdCompleted adCompleted);

protected:
    VIRLOAdViewController();

private:
    mutable std::mutex m_mutex;
    AdCompleted m_adCompleted;
};
