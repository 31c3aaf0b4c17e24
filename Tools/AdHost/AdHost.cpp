#include "AdHost.h"

#include "LineChannel.h"

#include <VIRLOAdFramework/Bundle.h>
#include <VIRLOAdFramework/Exception.h>
#include <VIRLOAdFramework/NetworkFlags.h>
#include <VIRLOAdFramework/NotificationCenter.h>
#include <VIRLOAdFramework/URLSession.h>
#include <VIRLOAdFramework/VIRLOAdPresenter.h>
#include <VIRLOAdFramework/VIRLOAdViewController.h>
#include <VIRLOAdFramework/VIRLOConstans.h>
#include <VIRLOAdFramework/VIRLOUserProfile.h>

#include <QGuiApplication>
#include <QQuickWindow>
#include <QScreen>

#include <algorithm>
#include <stdexcept>
#include <utility>

using virlo::JSON;
using virlo::NotificationCenter;
using virlo::OptionalError;

namespace
{
/// The codes of JSON-RPC 2.0, and two of ours.
enum Code : int {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParameters = -32602,
    wrongState = -32000,
    adFailed = -32001
};

/// Becomes the error of a response.
class Refusal : public std::runtime_error
{
public:
    Refusal(Code code, const std::string& reason) : std::runtime_error(reason), m_code(code) {}

    [[nodiscard]] Code code() const { return m_code; }

private:
    Code m_code;
};

JSON errorObject(Code code, const std::string& message)
{
    return {{"code", code}, {"message", message}};
}

JSON errorObject(const virlo::Error& error)
{
    JSON object = errorObject(
        adFailed, error.userInfo.is_object() ? error.userInfo.value("Reason", error.domain) : error.domain);
    object["data"] = {{"domain", error.domain}, {"code", error.code}, {"userInfo", error.userInfo}};
    return object;
}

JSON response(const JSON& id, const char* key, JSON value)
{
    return {{"jsonrpc", "2.0"}, {"id", id}, {key, std::move(value)}};
}

/// `at` and `get` of another type throw, and `take` says so.
std::string text(const JSON& parameters, const char* key)
{
    return parameters.at(key).get<std::string>();
}

void onMain(const std::weak_ptr<AdHost>& host, std::function<void(AdHost&)> work)
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), [host, work = std::move(work)] {
        if (const auto self = host.lock())
            work(*self);
    });
}
} // namespace

const std::map<std::string, AdHost::Method> AdHost::methods{
    {"start", &AdHost::start},
    {"request", &AdHost::request},
    {"show", &AdHost::show},
    {"dismiss", &AdHost::dismiss},
    {"background", &AdHost::background},
    {"foreground", &AdHost::foreground},
    {"setUserProfile", &AdHost::setUserProfile},
    {"registerThirdPartyUserId", &AdHost::registerThirdPartyUserId},
    {"checkRewards", &AdHost::checkRewards},
};

AdHost::AdHost(LineChannel& channel, QSize size) : m_channel(channel), m_size(size) {}

AdHost::~AdHost() = default;

void AdHost::take(const std::string& line)
{
    const JSON message = JSON::parse(line, nullptr, false);
    if (message.is_discarded()) {
        m_channel.write(
            response(nullptr, "error", errorObject(parseError, "The line is no JSON, or too long.")));
        return;
    }
    const bool isRPC = message.is_object() && message.value("jsonrpc", JSON()) == "2.0";
    const JSON id = isRPC ? message.value("id", JSON()) : JSON();
    const JSON parameters = isRPC ? message.value("params", JSON::object()) : JSON();
    if (!isRPC || !message.contains("method") || !message["method"].is_string() || !parameters.is_object() ||
        id.is_structured() || id.is_boolean()) {
        m_channel.write(response(nullptr, "error",
                                 errorObject(invalidRequest, "This is no JSON-RPC 2.0 request with "
                                                             "named parameters.")));
        return;
    }
    Respond respond = [](const JSON&, const OptionalError&) {};
    if (message.contains("id"))
        respond = [&channel = m_channel, id](const JSON& result, const OptionalError& error) {
            channel.write(error ? response(id, "error", errorObject(*error))
                                : response(id, "result", result));
        };
    try {
        call(message["method"].get<std::string>(), parameters, respond);
        return;
    } catch (const Refusal& refusal) {
        if (message.contains("id"))
            m_channel.write(response(id, "error", errorObject(refusal.code(), refusal.what())));
    } catch (const std::exception& error) { // a parameter that is missing or wrong
        if (message.contains("id"))
            m_channel.write(response(id, "error", errorObject(invalidParameters, error.what())));
    }
}

void AdHost::call(const std::string& method, const JSON& parameters, const Respond& respond)
{
    const auto found = methods.find(method);
    if (found == methods.end())
        throw Refusal(methodNotFound, "There is no method \"" + method + "\".");
    if (!m_ads && method != "start")
        throw Refusal(wrongState, "The first method is \"start\".");
    (this->*found->second)(parameters, respond);
}

void AdHost::notify(const char* method, JSON parameters)
{
    m_channel.write({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(parameters)}});
}

void AdHost::start(const JSON& parameters, const Respond& respond)
{
    if (m_ads)
        throw Refusal(wrongState, "The session has been started.");
    const std::string appIdentifier = text(parameters, "appIdentifier");
    const std::string name = parameters.value("name", appIdentifier);
    const std::string authorities = parameters.value("authorities", "");
    const bool isReachable = parameters.value("reachable", false);
    const double limit = parameters.value("preloadTimeLimit", 0.0);
    virlo::Bundle::setMainBundle(parameters.value("identifier", appIdentifier), name,
                                 parameters.value("version", "1.0"));
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(authorities);
    if (isReachable) // lives as long as the process
        virlo::NetworkFlagsSource::setShared(
            virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable).release());
    m_ads = VIRLOAdController::sharedAdController();
    m_ads->setDelegate(weak_from_this());
    m_ads->setPreloadTimeLimit(limit);
    m_ads->startWithAppIdentifier(appIdentifier);
    respond({{"version", VIRLOAdFrameworkVersion}}, std::nullopt);
}

void AdHost::request(const JSON& parameters, const Respond& respond)
{
    if (m_known.size() >= mostAds)
        throw Refusal(wrongState, "So many ads are under way: show or dismiss one.");
    const auto completion = [weak = weak_from_this(), number = m_lastAd + 1](const auto& screen,
                                                                             const OptionalError& error) {
        onMain(weak, [number, screen, error](AdHost& self) { self.adDidEnd(number, screen, error); });
    };
    if (parameters.contains("type"))
        m_ads->adViewControllerOfTypeWithCompletion(parameters["type"].get<std::uint64_t>(), completion);
    else
        m_ads->adViewControllerForPlacementWithCompletion(text(parameters, "placement"), completion);
    m_known.emplace(++m_lastAd, Ad());
    respond({{"ad", m_lastAd}}, std::nullopt);
}

void AdHost::adDidEnd(int number, std::shared_ptr<VIRLOAdViewController> screen, const OptionalError& error)
{
    const auto known = m_known.find(number);
    if (known == m_known.end())
        return; // dismissed before it was ready
    known->second.screen = std::move(screen);
    if (known->second.screen) {
        notify("ready", {{"ad", number}});
        return;
    }
    m_known.erase(known);
    if (error)
        notify("error", {{"ad", number}, {"error", errorObject(*error)}});
    else
        notify("none", {{"ad", number}});
}

AdHost::Ad& AdHost::adNamedIn(const JSON& parameters)
{
    const auto known = m_known.find(parameters.at("ad").get<int>());
    if (known == m_known.end())
        throw Refusal(wrongState, "There is no such ad, or it has been closed.");
    return known->second;
}

void AdHost::show(const JSON& parameters, const Respond& respond)
{
    Ad& ad = adNamedIn(parameters);
    if (!ad.screen)
        throw Refusal(wrongState, "The ad is not ready yet.");
    if (m_window)
        throw Refusal(wrongState, "An ad is shown.");
    ad.isShown = true;
    respond(true, std::nullopt);
    showWindow(parameters["ad"].get<int>());
}

void AdHost::showWindow(int number)
{
    m_window = std::make_unique<QQuickWindow>();
    m_window->setColor(Qt::black);
    if (m_size.isEmpty()) {
        // The whole screen, also without a window manager that would see to it.
        m_window->setGeometry(m_window->screen()->geometry());
        m_window->showFullScreen();
    } else {
        m_window->resize(m_size);
        m_window->show();
    }
    m_window->requestActivate();
    VIRLOAdPresenter::present(m_known[number].screen, m_window.get(), [weak = weak_from_this(), number] {
        onMain(weak, [number](AdHost& self) {
            self.m_window.reset();
            self.m_known.erase(number);
            self.notify("closed", {{"ad", number}});
        });
    });
    QObject::connect(
        m_window.get(), &QQuickWindow::frameSwapped, m_window.get(),
        [this, number] {
            notify("shown", {{"ad", number}});
        },
        Qt::SingleShotConnection);
}

void AdHost::dismiss(const JSON& parameters, const Respond& respond)
{
    const Ad& ad = adNamedIn(parameters);
    if (ad.isShown)
        VIRLOAdPresenter::dismiss(ad.screen);
    else
        m_known.erase(parameters["ad"].get<int>());
    respond(true, std::nullopt);
}

void AdHost::background(const JSON&, const Respond& respond)
{
    NotificationCenter::defaultCenter().post(virlo::ApplicationDidEnterBackgroundNotification);
    respond(true, std::nullopt);
}

void AdHost::foreground(const JSON&, const Respond& respond)
{
    NotificationCenter::defaultCenter().post(virlo::ApplicationDidBecomeActiveNotification);
    respond(true, std::nullopt);
}

void AdHost::setUserProfile(const JSON& parameters, const Respond& respond)
{
    const auto age = parameters.value("age", std::uint64_t{0});
    const std::string gender = parameters.value("gender", "");
    const auto keywords = parameters.value("keywords", std::vector<std::string>());
    const auto profile = VIRLOUserProfile::sharedProfile();
    profile->reset();
    if (age > 0)
        profile->setAge(age);
    if (!gender.empty())
        profile->setGender(gender);
    for (const std::string& keyword : keywords)
        profile->addKeyword(keyword);
    respond(true, std::nullopt);
}

void AdHost::registerThirdPartyUserId(const JSON& parameters, const Respond& respond)
{
    m_ads->registerThirdPartyUserIdWithCompletion(
        text(parameters, "userId"), [respond](const OptionalError& error) { respond(true, error); });
}

void AdHost::checkRewards(const JSON& parameters, const Respond& respond)
{
    m_ads->checkAvailableCurrencyAfterTimeInterval(parameters.value("after", 0.0));
    respond(true, std::nullopt);
}

void AdHost::didGetCurrency(const JSON& info)
{
    notify("reward", {{"info", info}});
}
