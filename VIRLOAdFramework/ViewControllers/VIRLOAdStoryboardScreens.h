#pragma once

#include "VIRLOAdScreens.h"

/// The screens of this library: chooses one by the advertisement's type from the storyboard
/// "VIRLOAdStoryboard". Installs itself when the library is loaded, and has the scenes compiled in the
/// background once the application runs. Types without a screen get neither screen nor error.
class VIRLOAdStoryboardScreens : public VIRLOAdScreens
{
public:
    static constexpr const char* storyboardName = "VIRLOAdStoryboard";

    Abandon screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                 std::shared_ptr<VIRLOAdServerAPI> api,
                                                 Completion completion) override;

    /// Begins what takes time before a first screen. Main thread; waits for nothing.
    static void warmUp();
};
