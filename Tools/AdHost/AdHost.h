#pragma once

#include <VIRLOAdFramework/VIRLOAdController.h>

#include <QSize>

#include <functional>
#include <map>
#include <memory>
#include <string>

class LineChannel;
class QQuickWindow;

/// What virlo-adhost does for its host: each method of docs/hosts.md is a member of the table in the source.
/// Ads are named by numbers, which count the host's requests. Main thread, but for the rewards, which come on
/// a worker. Held by a shared pointer.
class AdHost : public VIRLOAdControllerDelegate, public std::enable_shared_from_this<AdHost>
{
public:
    static constexpr std::size_t mostAds = 16; ///< requested and not yet closed

    /// The window fills the screen where `size` is empty. `channel` must outlive the process's last log line.
    AdHost(LineChannel& channel, QSize size);
    ~AdHost() override;

    /// Takes one JSON-RPC request or notification, and responds to the first.
    void take(const std::string& line);

    void didGetCurrency(const virlo::JSON& info) override;

private:
    using JSON = virlo::JSON;
    /// Called once with the result, or with an error.
    using Respond = std::function<void(const JSON& result, const virlo::OptionalError&)>;
    using Method = void (AdHost::*)(const JSON& parameters, const Respond& respond);
    static const std::map<std::string, Method> methods;

    struct Ad {
        std::shared_ptr<VIRLOAdViewController> screen; ///< null until it is ready
        bool isShown = false;
    };

    void start(const JSON& parameters, const Respond& respond);
    void request(const JSON& parameters, const Respond& respond);
    void show(const JSON& parameters, const Respond& respond);
    void dismiss(const JSON& parameters, const Respond& respond);
    void background(const JSON& parameters, const Respond& respond);
    void foreground(const JSON& parameters, const Respond& respond);
    void setUserProfile(const JSON& parameters, const Respond& respond);
    void registerThirdPartyUserId(const JSON& parameters, const Respond& respond);
    void checkRewards(const JSON& parameters, const Respond& respond);

    void call(const std::string& method, const JSON& parameters, const Respond& respond);
    void notify(const char* method, JSON parameters);
    void adDidEnd(int number, std::shared_ptr<VIRLOAdViewController> screen,
                  const virlo::OptionalError& error);
    [[nodiscard]] Ad& adNamedIn(const JSON& parameters);
    void showWindow(int number);

    LineChannel& m_channel;
    const QSize m_size;
    std::shared_ptr<VIRLOAdController> m_ads; ///< null until started
    std::map<int, Ad> m_known;
    int m_lastAd = 0;
    std::unique_ptr<QQuickWindow> m_window;
};
