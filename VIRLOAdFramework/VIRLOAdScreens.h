#pragma once

#include "Error.h"
#include "Export.h"

#include <functional>
#include <memory>

class VIRLOAdServerAPI;
class VIRLOAdViewController;
class VIRLOAdvertisement;

/// Creates screens. The core has none, and without them a request for an ad gives neither screen nor error:
/// the presentation layer installs its factory when it is loaded, and a host without Qt installs its own,
/// whose screens derive from VIRLOAdViewController and report by VIRLOAdReports.h. Any thread.
class VIRLO_EXPORT VIRLOAdScreens
{
public:
    /// Neither screen nor error if the advertisement's type has no screen; never both.
    using Completion =
        std::function<void(std::shared_ptr<VIRLOAdViewController>, const virlo::OptionalError&)>;

    /// Gives up a screen that is still preloading: it is released and its completion is not called any more.
    /// False where the completion has been called or is being called. Any thread.
    using Abandon = std::function<bool()>;

    virtual ~VIRLOAdScreens() = default;

    /// Chooses the screen by the advertisement's type, gives it the advertisement and `api` (which it keeps
    /// weakly), lets it preload, and hands it over. Returns at once; the completion is called once, on any
    /// thread. The result is empty where nothing is left to preload; ignored, preloading takes as long as it
    /// takes.
    virtual Abandon screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                         std::shared_ptr<VIRLOAdServerAPI> api,
                                                         Completion completion) = 0;

    /// Not owned: it must live as long as the process, or until `install` is called again. May be
    /// called from a static initialiser.
    static void install(VIRLOAdScreens* screens);
    [[nodiscard]] static VIRLOAdScreens* installed();
};
