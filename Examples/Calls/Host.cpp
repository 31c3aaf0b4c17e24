/// \file
/// What a host on Qt Quick calls, each call once: start, ads, rewards, the user, the app around it.

#include <VIRLOAdFramework/AdvertisingIdentifier.h>
#include <VIRLOAdFramework/Application.h>
#include <VIRLOAdFramework/Bundle.h>
#include <VIRLOAdFramework/Exception.h>
#include <VIRLOAdFramework/NetworkFlags.h>
#include <VIRLOAdFramework/NotificationCenter.h>
#include <VIRLOAdFramework/Preferences.h>
#include <VIRLOAdFramework/SystemLog.h>
#include <VIRLOAdFramework/VIRLOAdController.h>
#include <VIRLOAdFramework/VIRLOAdFrameworkLogger.h>
#include <VIRLOAdFramework/VIRLOAdPresenter.h>
#include <VIRLOAdFramework/VIRLOAdViewController.h>
#include <VIRLOAdFramework/VIRLOConstans.h>
#include <VIRLOAdFramework/VIRLOUserProfile.h>

#include <cstdio>

namespace
{
/// Rewards come on a worker.
class Wallet : public VIRLOAdControllerDelegate
{
public:
    void didGetCurrency(const virlo::JSON& info) override
    {
        std::printf("%d coins\n", info.value("currencyAmount", 0));
    }
};

/// Opens app pages in the box's own store.
class Store : public virlo::URLOpener
{
public:
    bool open(const virlo::URL& url) override { return url.scheme() == "https"; }
};
} // namespace

void beforeTheStart()
{
    virlo::Bundle::setMainBundle("com.example.game", "Game", "1.0");
    const virlo::Bundle bundle = virlo::Bundle::mainBundle();
    std::printf("%s %s, %zu facts\n", bundle.identifier().c_str(),
                bundle.info("CFBundleName").value_or("").c_str(), bundle.infoDictionary().size());
    const virlo::Bundle other = virlo::Bundle::withFacts("com.example.part", "Part", "2.0");

    virlo::setSystemLogSink(
        [](std::string_view line) { std::printf("%.*s\n", int(line.size()), line.data()); });
    virlo::systemLog("A line among the library's.");
    VIRLOAdFrameworkLogger::setDebugLevel(4);
    VIRLOAdFrameworkLogger::logErrorWithFormat("%@ of %d", other.identifier(), 7);
    VIRLOAdFrameworkLogger::logWarningWithFormat("%.1f %%", 12.5);
    VIRLOAdFrameworkLogger::logNoticeWithFormat("%@", std::vector<int>{1, 2});
    VIRLOAdFrameworkLogger::logInfoWithFormat("%s", "text");

    virlo::AdvertisingIdentifier::set("6f9619ff-8b86-d011-b42d-00cf4fc964ff");
    virlo::AdvertisingIdentifier::renew();
    virlo::AdvertisingIdentifier::withhold();

    // A box that knows better than the kernel's routes whether it is connected.
    virlo::NetworkFlagsSource::setShared(virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable).release());
    const auto flags = virlo::makeFixedNetworkFlags(0);
    const auto reachable = flags->flagsForHost("ads.example.com").value_or(0) == flags->flagsForAddress(0);
    const auto watch = flags->watch([] { std::puts("changed"); });
    std::printf("%d %d\n", reachable, watch != nullptr);
}

void userProfile()
{
    const auto profile = VIRLOUserProfile::sharedProfile();
    profile->setAge(34);
    profile->setGender("female");
    profile->addKeyword("racing");
    profile->removeKeyword("racing");
    std::printf("%d %s %zu keywords, sent as %s, set as %s\n", int(profile->age()),
                profile->gender()->c_str(), profile->keywords().size(),
                profile->profileDictionary().dump().c_str(), profile->profileDict().dump().c_str());
    profile->reset();

    // Prefills the contact form; kept on disk by a worker.
    auto& preferences = virlo::Preferences::standard();
    preferences.setString(VIRLOAdFrameworkPreferencesEmailAddress, "viewer@example.com");
    preferences.synchronize();
    std::puts(preferences.string(VIRLOAdFrameworkPreferencesEmailAddress).value_or("none").c_str());
}

/// `window` is the app's.
void showAds(QQuickWindow* window)
{
    static Store store;
    virlo::Application::setURLOpener(&store);
    static const auto wallet = std::make_shared<Wallet>();
    const auto ads = VIRLOAdController::sharedAdController();
    ads->setDelegate(wallet);
    ads->setPreloadTimeLimit(10);
    ads->setVASTWrapperLimit(5);
    ads->setDebugMode(true);
    ads->startWithAppIdentifier("game");
    std::printf("%d %d\n", ads->debugMode(), ads->delegate() == wallet);

    ads->adViewControllerForPlacementWithCompletion(
        VIRLOAdFrameworkPlacementLevelUp, [window](const auto& screen, const virlo::OptionalError& error) {
            if (error)
                VIRLOAdFrameworkLogger::logErrorWithFormat("No ad: %@", virlo::describe(*error));
            if (!screen)
                return;
            // Without an own `adCompleted` the presenter dismisses the screen by itself.
            if (!screen->adCompleted())
                screen->setAdCompleted(
                    [weak = std::weak_ptr(screen)] { VIRLOAdPresenter::dismiss(weak.lock()); });
            VIRLOAdPresenter::present(screen, window, [] { std::puts("The window has its keys back."); });
        });
    // A video, at the moment that was named last.
    ads->setCurrentPlacement(VIRLOAdFrameworkPlacementOutOfEnergy);
    std::puts(ads->currentPlacement().value_or("").c_str());
    ads->adViewControllerOfTypeWithCompletion(4, {});
}

void rewards()
{
    const auto ads = VIRLOAdController::sharedAdController();
    ads->registerThirdPartyUserIdWithCompletion("viewer-1", [](const virlo::OptionalError& error) {
        std::puts(error ? "The server does not know the viewer yet." : "Rewards go to viewer-1.");
    });
    ads->checkAvailableCurrency();
    ads->checkAvailableCurrencyAfterTimeInterval(5);

    // In place of a delegate, or beside it.
    auto& center = virlo::NotificationCenter::defaultCenter();
    static const auto observation =
        center.addObserver(VIRLOAdFrameworkNotificationDidGetCurrency,
                           [](const auto& reward) { std::puts(reward.userInfo.dump().c_str()); });
    center.post("com.example.game.paused");
}

/// On Qt the library follows the app's state itself. A program whose windows are not the app's says it.
void ownLifeCycle()
{
    virlo::Application::setFollowsWindows(false);
    const auto ads = VIRLOAdController::sharedAdController();
    ads->applicationDidEnterForeground();
    ads->applicationDidEnterBackground();
    ads->applicationWillTerminate();
    virlo::Application::openURL(virlo::URL::fromString("https://example.com"),
                                [](bool accepted) { std::puts(accepted ? "opened" : "refused"); });
}

void misuse()
{
    try {
        VIRLOAdController::init(); // there is one controller
    } catch (const virlo::Exception& exception) {
        std::printf("%s: %s\n", exception.name().c_str(), exception.reason().c_str());
    }
}
