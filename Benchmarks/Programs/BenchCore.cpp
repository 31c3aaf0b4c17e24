// bench-core idle|request|started URL AUTHORITY: a process that links the core; "idle" does nothing with it,
// "request" has made one request with libcurl alone, "started" has a session. Says "ready" and waits to be
// measured.

#include "Bundle.h"
#include "MainLoop.h"
#include "NetworkFlags.h"
#include "VIRLOAdController.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOTrackingManager.h"

#include <curl/curl.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace
{

std::size_t pass(char*, std::size_t size, std::size_t count, void*)
{
    return size * count;
}

/// Keeps its connection, as the core does.
bool requestBare(const char* url, const char* authority)
{
    CURL* const handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_URL, url);
    curl_easy_setopt(handle, CURLOPT_CAINFO, authority);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &pass);
    return curl_easy_perform(handle) == CURLE_OK;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 4)
        return 2;
    std::shared_ptr<VIRLOAdController> ads;
    const auto network = virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable);
    if (std::strcmp(arguments[1], "request") == 0 && !requestBare(arguments[2], arguments[3]))
        return 1;
    if (std::strcmp(arguments[1], "started") == 0) {
        virlo::NetworkFlagsSource::setShared(network.get());
        virlo::Bundle::setMainBundle("com.example.bench-core", "Bench Core", "1.0");
        virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(arguments[3]);
        const auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString(arguments[2]));
        ads = VIRLOAdController::controllerWithCollaborators(
            api, VIRLOTrackingManager::initWithDirectoryPath("bench-core-tracking"),
            VIRLOAppRequestStore::storeWithDirectoryPath("bench-core-polls"));
        ads->startWithAppIdentifier("bench-core");
        // The session opens on a worker, which the loop does not hear of.
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!api->serverSession()) {
            if (std::chrono::steady_clock::now() > end)
                return 1;
            virlo::MainLoop::shared().runUntil([] { return false; }, virlo::Seconds(0.02));
        }
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
        pause();
}
