#pragma once

#include "Error.h"

#include <functional>
#include <memory>

class VIRLOAdServerAPI;
class VIRLOAdViewController;
class VIRLOAdvertisement;

/// Where screens come from. The core knows no screen: the layer that draws installs its maker when it is
/// loaded, and a program without that layer has none. Any thread.
class VIRLOAdScreens
{
public:
    /// Neither screen nor error where the advertisement's type has no screen; never both.
    using Completion =
        std::function<void(std::shared_ptr<VIRLOAdViewController>, const virlo::OptionalError&)>;

    virtual ~VIRLOAdScreens() = default;

    /// Chooses the screen by the advertisement's type, gives it the advertisement and `api` (which it keeps
    /// weakly), lets it preload, and hands it over. Returns at once; the completion is called once, on any
    /// thread.
    virtual void screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                      std::shared_ptr<VIRLOAdServerAPI> api,
                                                      Completion completion) = 0;

    /// Not owned: it must live as long as the process, or until another (or null) takes its place. May be
    /// called from a static initialiser.
    static void install(VIRLOAdScreens* screens);
    [[nodiscard]] static VIRLOAdScreens* installed();
};
