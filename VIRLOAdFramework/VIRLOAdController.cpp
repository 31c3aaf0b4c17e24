#include "VIRLOAdController.h"

#include "DiskFileSystem.h"
#include "Exception.h"
#include "Folders.h"
#include "GlobalQueue.h"
#include "Preferences.h"
#include "URL.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOAppRequestStore.h"
#include "VIRLOConstans.h"
#include "VIRLOHostText.h"
#include "VIRLOTrackingManager.h"
#include "VIRLOVASTXMLParser.h"

#include <utility>

using virlo::GlobalQueue;
using virlo::OptionalError;

namespace
{
/// The host gets an error in place of a screen that is not ready after `seconds`; 0 is no limit.
void limitPreloading(double seconds, const VIRLOAdScreens::Abandon& abandon,
                     const VIRLOAdController::AdViewControllerCompletion& completion)
{
    if (seconds <= 0 || !abandon)
        return;
    GlobalQueue::high().after(virlo::Seconds(seconds), [abandon, completion] {
        if (abandon())
            completion(nullptr, virlo::Error{VIRLOAdController::preloadTimeLimitErrorDomain,
                                             0,
                                             {{"Reason", "The ad was not ready within the time limit."}}});
    });
}

std::string trackingDirectory()
{
    const std::string library = virlo::Folders::library();
    return library.empty() ? library : library + "/Preferences/VIRLOTrackingManager";
}
} // namespace

void VIRLOAdControllerDelegate::didGetCurrency(const virlo::JSON&) {}

VIRLOAdController::VIRLOAdController(std::shared_ptr<VIRLOAdServerAPI> api,
                                     std::shared_ptr<VIRLOTrackingManager> trackingManager,
                                     AppRequestStoreSource appRequestStore)
    : m_api(std::move(api))
    , m_trackingManager(std::move(trackingManager))
    , m_appRequestStore(std::move(appRequestStore))
    , m_currencySyncQueue(kCurrencyRequestsSyncQueue)
{
}

VIRLOAdController::~VIRLOAdController() = default;

std::shared_ptr<VIRLOAdController> VIRLOAdController::sharedAdController()
{
    // Never destroyed: workers use it until the process ends.
    static const auto& shared = *new std::shared_ptr<VIRLOAdController>(initPrivate());
    return shared;
}

void VIRLOAdController::init()
{
    virlo::raise("Singleton", "Use +[VIRLOAdController sharedAdController]");
}

std::shared_ptr<VIRLOAdController> VIRLOAdController::initPrivate()
{
    // CMake checks that the base URL is valid.
    auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString(VIRLOAdFrameworkApiBaseURL));
    auto trackingManager = VIRLOTrackingManager::initWithDirectoryPath(trackingDirectory());
    std::shared_ptr<VIRLOAdController> controller(new VIRLOAdController(
        std::move(api), std::move(trackingManager), &VIRLOAppRequestStore::sharedStore));
    controller->observeApplication();
    // Read in the background from now on: the contact form needs them at once, on the main thread.
    [[maybe_unused]] const auto& preferences = virlo::Preferences::standard();
    GlobalQueue::background().async([] {
        for (const std::string& folder : {virlo::Folders::library(), virlo::Folders::caches()})
            virlo::DiskFileSystem::removeAbandonedTemporaryFiles(folder);
    });
    return controller;
}

std::shared_ptr<VIRLOAdController>
VIRLOAdController::controllerWithCollaborators(std::shared_ptr<VIRLOAdServerAPI> api,
                                               std::shared_ptr<VIRLOTrackingManager> trackingManager,
                                               std::shared_ptr<VIRLOAppRequestStore> appRequestStore)
{
    std::shared_ptr<VIRLOAdController> controller(new VIRLOAdController(
        std::move(api), std::move(trackingManager), [store = std::move(appRequestStore)] { return store; }));
    controller->observeApplication();
    return controller;
}

void VIRLOAdController::observeApplication()
{
    const auto observe = [this](const char* name, void (VIRLOAdController::*handler)()) {
        m_observations.push_back(virlo::NotificationCenter::defaultCenter().addObserver(
            name, [weak = weak_from_this(), handler](const virlo::Notification&) {
                if (const auto self = weak.lock())
                    (self.get()->*handler)();
            }));
    };
    // Deliberate: "foreground" is bound to did-become-active, so it also runs after a mere interruption.
    observe(virlo::ApplicationDidBecomeActiveNotification, &VIRLOAdController::applicationDidEnterForeground);
    observe(virlo::ApplicationDidEnterBackgroundNotification,
            &VIRLOAdController::applicationDidEnterBackground);
    observe(virlo::ApplicationWillTerminateNotification, &VIRLOAdController::applicationWillTerminate);
}

void VIRLOAdController::startWithAppIdentifier(const std::string& appIdentifier)
{
    m_api->setAppIdentifier(appIdentifier);
    if (m_trackingManager->isTrackingInitiated()) {
        setCurrentPlacement(VIRLOAdFrameworkPlacementAppLaunch);
        m_api->startSession();
        return;
    }
    GlobalQueue::background().async([api = m_api, weak = weak_from_this()] {
        api->registerAppWithCompletion([weak](const OptionalError& error) {
            if (const auto self = weak.lock())
                self->firstStartDidRegisterApp(error);
        });
    });
}

void VIRLOAdController::firstStartDidRegisterApp(const OptionalError& error)
{
    if (error) {
        VIRLOAdFrameworkLogger::logWarningWithFormat("Cannot register application install. ERROR: %@", error);
        return;
    }
    if (m_trackingInitiated.exchange(true))
        return;
    m_trackingManager->initiateTracking();
    setCurrentPlacement(VIRLOAdFrameworkPlacementAppLaunch);
    m_api->startSession();
}

void VIRLOAdController::adViewControllerForPlacementWithCompletion(const std::string& placement,
                                                                   AdViewControllerCompletion completion)
{
    setCurrentPlacement(placement);
    adViewControllerOfTypeWithCompletion(0, std::move(completion));
}

void VIRLOAdController::adViewControllerOfTypeWithCompletion(std::uint64_t type,
                                                             AdViewControllerCompletion completion)
{
    if (!completion)
        completion = [](const std::shared_ptr<VIRLOAdViewController>&, const OptionalError&) {};
    // Off the caller's thread: reading the network's state asks the kernel and writes to the system log.
    GlobalQueue::high().async([api = m_api, type, placement = currentPlacement().value_or(""),
                               limit = m_preloadTimeLimit.load(), completion = std::move(completion)] {
        // The server object keeps this request until there is a session, so the request must not own it.
        const std::weak_ptr<VIRLOAdServerAPI> weakApi = api;
        api->retrieveAdvertisementForPlacementOfTypeWithCompletion(
            placement, VIRLOAdvertisementType{type},
            [weakApi, limit, completion](std::shared_ptr<VIRLOAdvertisement> advertisement,
                                         const OptionalError& error) {
                VIRLOAdScreens* const screens = VIRLOAdScreens::installed();
                auto strongApi = weakApi.lock();
                if (!advertisement || !screens || !strongApi) {
                    completion(nullptr, error);
                    return;
                }
                const auto abandon = screens->screenForAdvertisementWithCompletion(
                    std::move(advertisement), std::move(strongApi), completion);
                limitPreloading(limit, abandon, completion);
            });
    });
}

void VIRLOAdController::registerThirdPartyUserIdWithCompletion(const std::string& userId,
                                                               ErrorCompletion completion)
{
    GlobalQueue::high().async(
        [api = m_api, userId = VIRLOHostText::wellFormed(userId), completion = std::move(completion)] {
            api->registerUsernameForVirtualCurrencyWithCompletion(userId, completion);
        });
}

void VIRLOAdController::setPreloadTimeLimit(double seconds)
{
    m_preloadTimeLimit = seconds;
}

void VIRLOAdController::setVASTWrapperLimit(std::size_t limit)
{
    VIRLOVASTXMLParser::setWrapperLimit(limit);
}

void VIRLOAdController::checkAvailableCurrency()
{
    m_currencySyncQueue.async([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->checkCurrencyOfStoredItems();
    });
}

void VIRLOAdController::checkAvailableCurrencyAfterTimeInterval(double interval)
{
    m_currencySyncQueue.after(virlo::Seconds(interval), [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->checkCurrencyOfStoredItems();
    });
}

void VIRLOAdController::checkCurrencyOfStoredItems()
{
    const auto store = m_appRequestStore();
    for (const virlo::URL& url : store->items()) {
        VIRLOAdFrameworkLogger::logInfoWithFormat("Check currency for URL: %@", url);
        m_api->checkAvailableCurrencyForURLWithCompletion(
            url, [weak = weak_from_this(), url](bool rewarded, const std::optional<virlo::JSON>& info,
                                                const OptionalError& error) {
                if (const auto self = weak.lock())
                    self->currencyCheckDidEnd(url, rewarded, info, error);
            });
    }
    store->removeExpiredItems();
}

void VIRLOAdController::currencyCheckDidEnd(const virlo::URL& url, bool rewarded,
                                            const std::optional<virlo::JSON>& info,
                                            const OptionalError& error)
{
    if (error)
        VIRLOAdFrameworkLogger::logNoticeWithFormat("Check currency error: %@.\nSystem will make another "
                                                    "attempt next time application enters foreground.",
                                                    error);
    else
        VIRLOAdFrameworkLogger::logInfoWithFormat("Currency checked. Info: %@", info);

    // Deliberate: a reward counts even with an error.
    if (!rewarded)
        return;
    const virlo::JSON reward = info.value_or(virlo::JSON());
    virlo::NotificationCenter::defaultCenter().post(VIRLOAdFrameworkNotificationDidGetCurrency, nullptr,
                                                    reward);
    if (const auto listener = delegate())
        listener->didGetCurrency(reward);
    m_appRequestStore()->removeItem(url);
}

std::optional<std::string> VIRLOAdController::currentPlacement() const
{
    const auto item = m_trackingManager->lastTrackingItem();
    return item ? std::optional(item->placement()) : std::nullopt;
}

void VIRLOAdController::setCurrentPlacement(const std::string& placement)
{
    const std::string text = VIRLOHostText::wellFormed(placement);
    m_trackingManager->registerPlacement(text);
    GlobalQueue::background().async([api = m_api, text] { api->reportCurrentPlacement(text); });
}

std::shared_ptr<VIRLOAdControllerDelegate> VIRLOAdController::delegate() const
{
    const std::lock_guard lock(m_delegateMutex);
    return m_delegate.lock();
}

void VIRLOAdController::setDelegate(std::weak_ptr<VIRLOAdControllerDelegate> delegate)
{
    const std::lock_guard lock(m_delegateMutex);
    m_delegate = std::move(delegate);
}

bool VIRLOAdController::debugMode() const
{
    return m_debugMode;
}

void VIRLOAdController::setDebugMode(bool debugMode)
{
    m_debugMode = debugMode;
}

std::shared_ptr<VIRLOAdServerAPI> VIRLOAdController::api() const
{
    return m_api;
}

std::shared_ptr<VIRLOTrackingManager> VIRLOAdController::trackingManager() const
{
    return m_trackingManager;
}

void VIRLOAdController::applicationDidEnterForeground()
{
    setCurrentPlacement(VIRLOAdFrameworkPlacementAppResume);
    GlobalQueue::standard().async([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->checkAvailableCurrencyAfterTimeInterval(0);
    });
}

void VIRLOAdController::applicationDidEnterBackground()
{
    GlobalQueue::background().async([self = shared_from_this()] {
        self->setCurrentPlacement(VIRLOAdFrameworkPlacementAppClose);
        self->m_appRequestStore()->save();
        self->m_trackingManager->saveToFile();
    });
}

void VIRLOAdController::applicationWillTerminate()
{
    GlobalQueue::background().async([api = m_api] { api->endSession(); });
}
