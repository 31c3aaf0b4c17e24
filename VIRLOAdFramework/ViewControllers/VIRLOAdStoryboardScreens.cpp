#include "VIRLOAdStoryboardScreens.h"

#include "MainLoop.h"
#include "Storyboard.h"
#include "VIRLOAdFullscreenViewController.h"
#include "VIRLOAdInterstitialViewController.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdVideoViewController.h"
#include "VIRLOAdViewControllerBase.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOPreloadedAdViewController.h"

#include <QGuiApplication>

#include <mutex>
#include <utility>

using virlo::Storyboard;

namespace
{

constexpr const char* fullscreenScene = "QDXAdFullscreenViewController";
constexpr const char* interstitialScene = "QDXAdSingleViewController";

std::shared_ptr<VIRLOAdViewControllerBase> sceneNamed(const char* identifier)
{
    const auto storyboard = Storyboard::storyboardWithName(VIRLOAdStoryboardScreens::storyboardName);
    if (!storyboard)
        return nullptr;
    return std::dynamic_pointer_cast<VIRLOAdViewControllerBase>(
        storyboard->instantiateViewControllerWithIdentifier(identifier));
}

std::shared_ptr<VIRLOAdViewControllerBase> screenForType(VIRLOAdvertisementType type)
{
    switch (type) {
    case VIRLOAdvertisementType::Interstitial:
        return sceneNamed(interstitialScene);
    case VIRLOAdvertisementType::Video:
        return virlo::ViewController::make<VIRLOAdVideoViewController>();
    case VIRLOAdvertisementType::Engagement:
        return sceneNamed(fullscreenScene);
    default:
        return nullptr;
    }
}

/// A screen until it is handed over or given up, whichever comes first.
class PendingScreen
{
public:
    explicit PendingScreen(std::shared_ptr<VIRLOAdViewController> screen) : m_screen(std::move(screen)) {}

    /// Null for all callers but the first.
    [[nodiscard]] std::shared_ptr<VIRLOAdViewController> take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_screen, nullptr);
    }

private:
    std::mutex m_mutex;
    std::shared_ptr<VIRLOAdViewController> m_screen;
};

bool install()
{
    // Never destroyed: an answer may come while the process's statics go.
    static auto* const screens = new VIRLOAdStoryboardScreens;
    VIRLOAdScreens::install(screens);
    VIRLOAdFullscreenViewController::registerScene();
    virlo::Storyboard::registerScene(
        VIRLOAdStoryboardScreens::storyboardName, interstitialScene,
        QUrl(QStringLiteral("qrc:/qt/qml/VIRLOAdFramework/Storyboard/QDXAdSingleViewController.qml")),
        [] { return virlo::ViewController::make<VIRLOAdInterstitialViewController>(); });
    return true;
}

[[maybe_unused]] const bool installed = install();

void warmUpSoon()
{
    virlo::MainLoop::shared().post(&VIRLOAdStoryboardScreens::warmUp);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(warmUpSoon)

VIRLOAdScreens::Abandon VIRLOAdStoryboardScreens::screenForAdvertisementWithCompletion(
    std::shared_ptr<VIRLOAdvertisement> advertisement, std::shared_ptr<VIRLOAdServerAPI> api,
    Completion completion)
{
    const auto screen = screenForType(advertisement->type());
    if (!screen) {
        completion(nullptr, std::nullopt);
        return {};
    }
    screen->setAd(std::move(advertisement));
    screen->setApi(api);
    const auto preloaded = std::dynamic_pointer_cast<VIRLOPreloadedAdViewController>(screen);
    if (!preloaded) {
        completion(screen, std::nullopt);
        return {};
    }
    const auto pending = std::make_shared<PendingScreen>(screen);
    preloaded->preloadAdElementsWithCompletion(
        [pending, completion = std::move(completion)](const virlo::OptionalError& error) {
            if (auto ready = pending->take())
                completion(error ? nullptr : std::move(ready), error);
        });
    return [pending] { return pending->take() != nullptr; };
}

void VIRLOAdStoryboardScreens::warmUp()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return;
    VIRLOFrameworkImages::warmUp();
    if (const auto storyboard = Storyboard::storyboardWithName(storyboardName))
        for (const char* const scene : {fullscreenScene, interstitialScene})
            storyboard->warmUp(scene);
}
