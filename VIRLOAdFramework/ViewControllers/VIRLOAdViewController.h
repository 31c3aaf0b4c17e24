#pragma once

#include "Export.h"

#include <functional>
#include <mutex>

/// A ready ad screen as a host sees it: something to present (VIRLOAdPresenter.h). Comes from
/// VIRLOAdController, which keeps no reference: the screen belongs to its shared pointers. The last one may
/// go on any thread; the screen is then destroyed on the main thread with everything that it made, and
/// answers that are still under way for it are dropped. Any thread.
class VIRLO_EXPORT VIRLOAdViewController
{
public:
    using AdCompleted = std::function<void()>;

    virtual ~VIRLOAdViewController();
    VIRLOAdViewController(const VIRLOAdViewController&) = delete;
    VIRLOAdViewController& operator=(const VIRLOAdViewController&) = delete;

    /// What the ad calls when it is finished: on the main thread after Menu or its close button, on a worker
    /// after the viewer was sent to an app's page. It may be called more than once. The screen stays until it
    /// is dismissed. Without one set by the host, presenting sets the dismissal here.
    [[nodiscard]] AdCompleted adCompleted() const;
    void setAdCompleted(AdCompleted adCompleted);

protected:
    VIRLOAdViewController();

private:
    mutable std::mutex m_mutex;
    AdCompleted m_adCompleted;
};
