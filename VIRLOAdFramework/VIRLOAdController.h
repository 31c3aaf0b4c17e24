#pragma once

#include "Error.h"
#include "Export.h"
#include "NotificationCenter.h"
#include "SerialQueue.h"
#include "URL.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class VIRLOAdServerAPI;
class VIRLOAdViewController;
class VIRLOAppRequestStore;
class VIRLOTrackingManager;

/// Told of rewards. Override what you want to hear.
class VIRLO_EXPORT VIRLOAdControllerDelegate
{
public:
    virtual ~VIRLOAdControllerDelegate() = default;

    /// A reward was found. `info` is the server's answer, the same as the user info of
    /// `VIRLOAdFrameworkNotificationDidGetCurrency`. On any thread but the main one; not for long.
    virtual void didGetCurrency(const virlo::JSON& info);
};

/// The library's one entry point. A host takes the shared controller, starts it once with its app identifier
/// and then asks it for ready screens at the moments (placements) of its own flow.
///
/// It follows the app's life through the notifications of NotificationCenter.h: activity regained reports
/// "AppResume" and looks for rewards, the background reports "AppClose" and saves, termination ends the
/// server session.
///
/// Every operation may be called from any thread, returns at once and waits neither for the network nor for a
/// write to disk. Failures reach the completion as values (domains: see VIRLOAdServerAPI.h); what no
/// completion can tell is logged.
class VIRLO_EXPORT VIRLOAdController : public std::enable_shared_from_this<VIRLOAdController>
{
public:
    /// Called once (for the one exception see `setPreloadTimeLimit`), on any thread and never on the caller's
    /// stack, with the screen, or an error, or (for an advertisement of a type without a screen) neither.
    using AdViewControllerCompletion =
        std::function<void(std::shared_ptr<VIRLOAdViewController>, const virlo::OptionalError&)>;
    /// As above, with nothing on success.
    using ErrorCompletion = std::function<void(const virlo::OptionalError&)>;

    /// The one controller, made on first use; it lives as long as the process.
    [[nodiscard]] static std::shared_ptr<VIRLOAdController> sharedAdController();
    /// Raises an Exception named "Singleton": use `sharedAdController`.
    [[noreturn]] static void init();
    /// A controller beside the shared one, on collaborators of the caller's, for programs that embed the
    /// core.
    [[nodiscard]] static std::shared_ptr<VIRLOAdController>
    controllerWithCollaborators(std::shared_ptr<VIRLOAdServerAPI> api,
                                std::shared_ptr<VIRLOTrackingManager> trackingManager,
                                std::shared_ptr<VIRLOAppRequestStore> appRequestStore);

    ~VIRLOAdController();
    VIRLOAdController(const VIRLOAdController&) = delete;
    VIRLOAdController& operator=(const VIRLOAdController&) = delete;

    /// Opens the server session; on the device's very first run it registers the install before. Where that
    /// fails no session is opened in this run and the next start tries again. Asks the disk for one file's
    /// existence.
    void startWithAppIdentifier(const std::string& appIdentifier);

    /// Makes `placement` the current one and asks for an ad of any kind for it. Waits (in the background) for
    /// a session where there is none yet.
    void adViewControllerForPlacementWithCompletion(const std::string& placement,
                                                    AdViewControllerCompletion completion);
    /// Asks for an ad of one kind (0 any, 1 and 2 discovery, 3 interstitial, 4 video, 5 featured, 6
    /// engagement, 7 recommendation) for the current placement.
    void adViewControllerOfTypeWithCompletion(std::uint64_t type, AdViewControllerCompletion completion);

    /// How many seconds a screen may preload, counted from the server's response to the request for the ad;
    /// then its completion gets an error of domain `preloadTimeLimitErrorDomain` (code 0) and the screen is
    /// dropped. 0, the default, is no limit: preloading takes as long as its downloads, and the completion of
    /// a video ad whose VAST document holds nothing playable is never called. Holds for later requests.
    void setPreloadTimeLimit(double seconds);
    static constexpr const char* preloadTimeLimitErrorDomain = "com.virlohq.error.preloadTimeLimit";

    /// Tells the server the host's own name of the user who earns the rewards. The completion is required.
    void registerThirdPartyUserIdWithCompletion(const std::string& userId, ErrorCompletion completion);

    /// Asks the server about every app that the user was sent to; each reward found is posted, told to the
    /// delegate and then forgotten.
    void checkAvailableCurrency();
    /// The same, `interval` seconds from now.
    void checkAvailableCurrencyAfterTimeInterval(double interval);

    /// Where the user is in the host's flow: the last one set in this run. Setting it also reports it to the
    /// server.
    [[nodiscard]] std::optional<std::string> currentPlacement() const;
    void setCurrentPlacement(const std::string& placement);

    /// Held weakly.
    [[nodiscard]] std::shared_ptr<VIRLOAdControllerDelegate> delegate() const;
    void setDelegate(std::weak_ptr<VIRLOAdControllerDelegate> delegate);

    /// The host's own flag: nothing reads it, and it does not change what is logged.
    [[nodiscard]] bool debugMode() const;
    void setDebugMode(bool debugMode);

    [[nodiscard]] std::shared_ptr<VIRLOAdServerAPI> api() const;
    [[nodiscard]] std::shared_ptr<VIRLOTrackingManager> trackingManager() const;

    /// What the app's notifications call; a host without them may call these itself.
    void applicationDidEnterForeground();
    void applicationDidEnterBackground();
    void applicationWillTerminate();

private:
    using AppRequestStoreSource = std::function<std::shared_ptr<VIRLOAppRequestStore>()>;

    VIRLOAdController(std::shared_ptr<VIRLOAdServerAPI> api,
                      std::shared_ptr<VIRLOTrackingManager> trackingManager,
                      AppRequestStoreSource appRequestStore);
    static std::shared_ptr<VIRLOAdController> initPrivate();

    void observeApplication();
    void firstStartDidRegisterApp(const virlo::OptionalError& error);
    void checkCurrencyOfStoredItems();
    void currencyCheckDidEnd(const virlo::URL& url, bool rewarded, const std::optional<virlo::JSON>& info,
                             const virlo::OptionalError& error);

    const std::shared_ptr<VIRLOAdServerAPI> m_api;
    const std::shared_ptr<VIRLOTrackingManager> m_trackingManager;
    const AppRequestStoreSource m_appRequestStore;
    virlo::SerialQueue m_currencySyncQueue;
    std::atomic<bool> m_debugMode{false};
    std::atomic<bool> m_trackingInitiated{false};
    std::atomic<double> m_preloadTimeLimit{0};
    mutable std::mutex m_delegateMutex;
    std::weak_ptr<VIRLOAdControllerDelegate> m_delegate;
    std::vector<std::unique_ptr<virlo::NotificationCenter::Observation>> m_observations;
};
