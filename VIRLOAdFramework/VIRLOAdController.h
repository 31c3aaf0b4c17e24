#pragma once

#include "Error.h"
#include "Export.h"
#include "NotificationCenter.h"
#include "SerialQueue.h"
#include "URL.h"

#include <atomic>
#include <cstddef>
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

/// Receives rewards. Override the operations that you need.
class VIRLO_EXPORT VIRLOAdControllerDelegate
{
public:
    virtual ~VIRLOAdControllerDelegate() = default;

    /// The user has earned a reward. `info` is the server's response, which is also the user info of
    /// `VIRLOAdFrameworkNotificationDidGetCurrency`. Called on a worker, never on the main thread; must
    /// return soon.
    virtual void didGetCurrency(const virlo::JSON& info);
};

/// The library's entry point. A host takes the shared controller, starts it once with its app identifier and
/// then requests ready screens at moments (placements) of its own flow.
///
/// It observes the app's life cycle by the notifications of NotificationCenter.h: becoming active reports
/// "AppResume" and checks for rewards, entering the background reports "AppClose" and saves, termination ends
/// the server session.
///
/// Every operation may be called from any thread, returns at once and waits neither for the network nor for a
/// write to disk. Failures are passed to the completion as values (domains: see VIRLOAdServerAPI.h); failures
/// without a completion are logged.
class VIRLO_EXPORT VIRLOAdController : public std::enable_shared_from_this<VIRLOAdController>
{
public:
    /// Called once (for the one exception see `setPreloadTimeLimit`), on any thread and never on the caller's
    /// stack, with the screen, or an error, or (for an advertisement of a type without a screen) neither.
    using AdViewControllerCompletion =
        std::function<void(std::shared_ptr<VIRLOAdViewController>, const virlo::OptionalError&)>;
    /// As above, with nothing on success.
    using ErrorCompletion = std::function<void(const virlo::OptionalError&)>;

    /// The shared instance, created on first use; it lives as long as the process.
    [[nodiscard]] static std::shared_ptr<VIRLOAdController> sharedAdController();
    /// Raises an Exception named "Singleton": use `sharedAdController`.
    [[noreturn]] static void init();
    /// A further instance with the caller's own collaborators, for programs that embed the core.
    [[nodiscard]] static std::shared_ptr<VIRLOAdController>
    controllerWithCollaborators(std::shared_ptr<VIRLOAdServerAPI> api,
                                std::shared_ptr<VIRLOTrackingManager> trackingManager,
                                std::shared_ptr<VIRLOAppRequestStore> appRequestStore);

    ~VIRLOAdController();
    VIRLOAdController(const VIRLOAdController&) = delete;
    VIRLOAdController& operator=(const VIRLOAdController&) = delete;

    /// Opens the server session; on the first run on this device it registers the install first. If that
    /// fails, no session is opened in this run and the next start tries again. Checks on the caller's thread
    /// whether one file exists.
    void startWithAppIdentifier(const std::string& appIdentifier);

    /// Makes `placement` the current one and requests an ad of any type for it. Without a session the request
    /// waits for one in the background.
    void adViewControllerForPlacementWithCompletion(const std::string& placement,
                                                    AdViewControllerCompletion completion);
    /// Requests an ad of one type (0 any, 1 and 2 discovery, 3 interstitial, 4 video, 5 featured, 6
    /// engagement, 7 recommendation) for the current placement.
    void adViewControllerOfTypeWithCompletion(std::uint64_t type, AdViewControllerCompletion completion);

    /// How many seconds a screen may preload, counted from the server's response to the request for the ad;
    /// then its completion gets an error of domain `preloadTimeLimitErrorDomain` (code 0) and the screen is
    /// dropped. 0, the default, is no limit: preloading takes as long as its downloads, and the completion of
    /// a video ad whose VAST document holds nothing playable is never called. Holds for later requests.
    void setPreloadTimeLimit(double seconds);
    static constexpr const char* preloadTimeLimitErrorDomain = "com.virlohq.error.preloadTimeLimit";

    /// The most wrappers of a VAST tag that are followed one after another; the industry recommends 5. 0, the
    /// default, is no limit: a tag that leads back to itself is then requested ever more slowly, up to once a
    /// minute, and the completion is not called. For a tag that exceeds the limit it gets an error (code
    /// 302). Applies to the whole process and to later requests.
    void setVASTWrapperLimit(std::size_t limit);

    /// Sends the server the host's own identifier of the user who earns the rewards. The completion is
    /// required.
    void registerThirdPartyUserIdWithCompletion(const std::string& userId, ErrorCompletion completion);

    /// Checks every URL of VIRLOAppRequestStore at the server; each reward is posted and passed to the
    /// delegate, and then its URL is removed.
    void checkAvailableCurrency();
    /// The same, `interval` seconds from now.
    void checkAvailableCurrencyAfterTimeInterval(double interval);

    /// The last placement set in this run. Setting it also reports it to the server.
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

    /// Called by the app's notifications; a host that posts none calls these itself.
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
