// host: uses the installed library in each way that a linker must serve: functions, a class to derive from,
// templates, constants, exceptions. Exits 0 where all of it works, without any network.

#include <VIRLOAdFramework/AdvertisingIdentifier.h>
#include <VIRLOAdFramework/Application.h>
#include <VIRLOAdFramework/Bundle.h>
#include <VIRLOAdFramework/Exception.h>
#include <VIRLOAdFramework/NetworkFlags.h>
#include <VIRLOAdFramework/SystemLog.h>
#include <VIRLOAdFramework/URLSession.h>
#include <VIRLOAdFramework/VIRLOAdController.h>
#include <VIRLOAdFramework/VIRLOAdFrameworkLogger.h>
#include <VIRLOAdFramework/VIRLOAdPresenter.h>
#include <VIRLOAdFramework/VIRLOAdViewController.h>
#include <VIRLOAdFramework/VIRLOConstans.h>
#include <VIRLOAdFramework/VIRLOUserProfile.h>

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace
{

class Wallet : public VIRLOAdControllerDelegate
{
public:
    void didGetCurrency(const virlo::JSON& info) override { VIRLOAdControllerDelegate::didGetCurrency(info); }
};

class NoPages : public virlo::URLOpener
{
public:
    bool open(const virlo::URL&) override { return false; }
};

bool misuseIsAnException()
{
    try {
        VIRLOAdController::init();
    } catch (const virlo::Exception& exception) {
        return exception.name() == "Singleton";
    }
}

} // namespace

int main(int count, char** arguments)
{
    QGuiApplication application(count, arguments);
    virlo::Bundle::setMainBundle("com.example.package-host", "Package Host", "1.0");
    virlo::setSystemLogSink([](std::string_view line) { std::printf("%s\n", std::string(line).c_str()); });
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile("");
    virlo::AdvertisingIdentifier::withhold();
    virlo::NetworkFlagsSource::setShared(virlo::makeFixedNetworkFlags(0).release());
    NoPages pages;
    virlo::Application::setURLOpener(&pages);

    const auto wallet = std::make_shared<Wallet>();
    const auto ads = VIRLOAdController::sharedAdController();
    ads->setDelegate(wallet);
    VIRLOUserProfile::sharedProfile()->addKeyword("linker");
    VIRLOAdFrameworkLogger::logErrorWithFormat("version %@ at %@, list %@, table %@", VIRLOAdFrameworkVersion,
                                               VIRLOAdFrameworkPlacementAppLaunch, std::vector<int>{1, 2},
                                               std::map<std::string, double>{{"third", 0.5}});

    QQuickWindow window;
    window.resize(640, 360);
    window.show();
    ads->startWithAppIdentifier("package-host");
    QTimer::singleShot(10'000, &application, [] { QGuiApplication::exit(1); });
    // There is no screen without a server: the presenter says so and comes back.
    VIRLOAdPresenter::present(nullptr, &window, [] { QGuiApplication::exit(misuseIsAnException() ? 0 : 1); });
    const int status = QGuiApplication::exec();
    virlo::Application::setURLOpener(nullptr);
    return status;
}
