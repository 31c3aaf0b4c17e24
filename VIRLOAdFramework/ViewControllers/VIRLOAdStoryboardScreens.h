#pragma once

#include "VIRLOAdScreens.h"

/// The screens of this library: chooses one by the advertisement's type. Screens with a scene come from the
/// storyboard "VIRLOAdStoryboard". Types without a screen get neither screen nor error.
class VIRLOAdStoryboardScreens : public VIRLOAdScreens
{
public:
    static constexpr const char* storyboardName = "VIRLOAdStoryboard";

    /// Starts everything that the screens need: installs itself, registers the scenes, starts the
    /// application's notifications and compiles the scenes in the background once the application runs. The
    /// shared library calls it when it is loaded; a program that links the screens statically calls it first.
    /// Any thread; later calls do nothing.
    static void start();

    Abandon screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                 std::shared_ptr<VIRLOAdServerAPI> api,
                                                 Completion completion) override;
};
