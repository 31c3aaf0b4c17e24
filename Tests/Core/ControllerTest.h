#pragma once

#include "CoreTest.h"
#include "VIRLOAdController.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOTrackingManager.h"

namespace virlo::test
{

/// A controller of the test's own over the scripted server and a disk that can fail.
class ControllerTest : public CoreTest
{
protected:
    static constexpr const char* trackingFile = "tracking/tracking.store";
    static constexpr const char* installPath = "/app/inst/host";

    /// As after an earlier run.
    void markTrackingInitiated() { folder.write(trackingFile, "mark"); }

    /// A later run's start: the session opens and the placement is reported.
    void start()
    {
        markTrackingInitiated();
        transport->expect("POST", startPath, sessionResponse());
        transport->expect("PUT", sessionPath);
        controller->startWithAppIdentifier("host");
        settleAll();
    }

    std::shared_ptr<VIRLOTrackingManager> trackingManager =
        VIRLOTrackingManager::initWithDirectoryPath(folder.path("tracking"));
    std::shared_ptr<VIRLOAppRequestStore> store =
        VIRLOAppRequestStore::storeWithDirectoryPath(folder.path("store"));
    std::shared_ptr<VIRLOAdController> controller =
        VIRLOAdController::controllerWithCollaborators(api, trackingManager, store);
};

} // namespace virlo::test
