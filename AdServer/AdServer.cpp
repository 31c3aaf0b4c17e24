#include "AdServer.h"

#include "AdEndpoints.h"
#include "CampaignCatalogue.h"
#include "CampaignReader.h"
#include "CertificateAuthority.h"
#include "ControlEndpoints.h"
#include "FaultTable.h"
#include "FileEndpoint.h"
#include "HTTPListener.h"
#include "InspectorResponder.h"
#include "ReplayEndpoint.h"
#include "RequestLog.h"
#include "RequestPipeline.h"
#include "SessionTable.h"
#include "StorePage.h"
#include "TransactionTable.h"
#include "TransactionTrace.h"
#include "VASTEndpoints.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace adserver
{

class AdServer::State
{
public:
    State(AdServerOptions given, AdServer& server)
        : options(std::move(given))
        , sessions(options.pingInterval, options.sessionLifetime)
        , control(server, sessions, campaigns, faults)
        , inspector(control, log, options.liveView)
        , pipeline(faults, log, trace, endpoints(server), scheme(), options.clock)
    {
        faults.setObserver([this] { log.feed().publish("faults", "{}"); });
    }

    /// Asked in this order; the one list that a new endpoint joins.
    [[nodiscard]] RequestPipeline::Endpoints endpoints(AdServer& server)
    {
        RequestPipeline::Endpoints all;
        all.push_back(std::make_unique<ControlEndpoints>(server, sessions, campaigns, faults));
        if (!options.replayFile.empty())
            all.push_back(std::make_unique<ReplayEndpoint>(options.replayFile));
        all.push_back(std::make_unique<AdEndpoints>(sessions, transactions, campaigns));
        all.push_back(std::make_unique<VASTEndpoints>(campaigns));
        all.push_back(std::make_unique<FileEndpoint>(campaigns));
        all.push_back(std::make_unique<StorePage>(campaigns));
        return all;
    }

    [[nodiscard]] std::string scheme() const { return options.plainHTTP ? "http" : "https"; }

    void beginAnew()
    {
        sessions.expireAll();
        sessions.setPingInterval(options.pingInterval);
        transactions.clear();
        trace.clear();
        campaigns.restart();
        log.clear();
        faults.replaceCampaignFaults(campaigns.faults());
    }

    [[nodiscard]] std::unique_ptr<HTTPListener> openPage()
    {
        // A page is a few connections, and one of them is its event stream.
        constexpr std::size_t mostConnections = 24;
        auto opened = std::make_unique<HTTPListener>(
            nullptr,
            [this](const httplib::Request& request, ClientConnection& connection) {
                return inspector.respond({.method = request.method,
                                          .path = request.path,
                                          .query = request.params,
                                          .headers = connection.entry().headers,
                                          .body = request.body,
                                          .origin = "http://" + request.get_header_value("Host"),
                                          .now = options.clock()});
            },
            [](const RequestLogEntry&) {}, mostConnections);
        opened->listen(*options.pagePort);
        return opened;
    }

    /// Guards `listener`, `page` and `authorityFile`; not held while a request is served.
    mutable std::mutex mutex;
    const AdServerOptions options;
    CampaignCatalogue campaigns;
    TransactionTable transactions;
    FaultTable faults;
    RequestLog log;
    SessionTable sessions;
    TransactionTrace trace;
    ControlEndpoints control;
    InspectorResponder inspector;
    RequestPipeline pipeline;
    std::filesystem::path authorityFile;
    std::unique_ptr<HTTPListener> listener;
    std::unique_ptr<HTTPListener> page;
};

AdServer::AdServer(AdServerOptions options) : m_state(std::make_unique<State>(std::move(options), *this)) {}

AdServer::~AdServer()
{
    stop();
}

void AdServer::start()
{
    auto& state = *m_state;
    const std::lock_guard lock(state.mutex);
    if (state.listener)
        return;
    state.campaigns.read(state.options.campaignsFolder);
    state.beginAnew();
    state.log.open(state.options.logFile);
    TLSContextPointer tls;
    state.authorityFile.clear();
    if (!state.options.plainHTTP) {
        const auto& folder = state.options.stateFolder;
        const CertificateAuthority authority(folder.empty() ? CertificateAuthority::defaultFolder() : folder,
                                             state.options.clock());
        tls = authority.makeTLSContext();
        state.authorityFile = authority.authorityFile();
    }
    auto listener = std::make_unique<HTTPListener>(
        std::move(tls),
        [&state](const httplib::Request& request, ClientConnection& connection) {
            return state.pipeline.respond(request, connection);
        },
        [&state](const RequestLogEntry& entry) { state.log.append(entry); });
    listener->listen(state.options.port);
    state.log.feed().open();
    if (state.options.pagePort) {
        state.page = state.openPage();
        state.inspector.setAddresses("http://127.0.0.1:" + std::to_string(state.page->port()),
                                     state.scheme() + "://localhost:" + std::to_string(listener->port()));
    }
    state.listener = std::move(listener);
}

void AdServer::stop()
{
    std::unique_ptr<HTTPListener> ending;
    std::unique_ptr<HTTPListener> page;
    {
        const std::lock_guard lock(m_state->mutex);
        ending = std::move(m_state->listener);
        page = std::move(m_state->page);
    }
    m_state->log.feed().close();
    if (page)
        page->stop();
    if (ending)
        ending->stop();
}

std::uint16_t AdServer::port() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->listener ? m_state->listener->port() : std::uint16_t{0};
}

std::string AdServer::baseURL() const
{
    return m_state->scheme() + "://localhost:" + std::to_string(port());
}

std::string AdServer::pageURL() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->page ? "http://127.0.0.1:" + std::to_string(m_state->page->port()) : std::string();
}

std::filesystem::path AdServer::authorityFile() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->authorityFile;
}

void AdServer::addCampaign(const std::string& name, const std::string& text,
                           const std::filesystem::path& folder)
{
    auto& campaigns = m_state->campaigns;
    campaigns.add(readCampaign(name, text, folder.empty() ? m_state->options.campaignsFolder : folder));
    m_state->faults.replaceCampaignFaults(campaigns.faults());
}

std::vector<std::string> AdServer::campaignErrors() const
{
    return m_state->campaigns.errors();
}

std::vector<std::string> AdServer::checkCampaigns(const std::filesystem::path& folder)
{
    CampaignCatalogue campaigns;
    campaigns.read(folder);
    return campaigns.errors();
}

void AdServer::setFault(const AdServerFault& fault)
{
    m_state->faults.set(fault);
}

void AdServer::clearFaults()
{
    m_state->faults.clear();
}

std::vector<RequestLogEntry> AdServer::requests() const
{
    return m_state->log.requests();
}

void AdServer::clearRequests()
{
    m_state->log.clear();
}

bool AdServer::waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                         std::chrono::milliseconds timeout) const
{
    return m_state->log.waitUntil(condition, timeout);
}

bool AdServer::waitForRequests(const std::string& method, const std::string& path, std::size_t count,
                               std::chrono::milliseconds timeout) const
{
    const auto isOne = [&](const RequestLogEntry& entry) {
        return entry.method == method && entry.path == path;
    };
    return waitUntil(
        [&](const auto& requests) {
            return static_cast<std::size_t>(std::count_if(requests.begin(), requests.end(), isOne)) >= count;
        },
        timeout);
}

void AdServer::expireSessions()
{
    m_state->sessions.expireAll();
}

void AdServer::setPingInterval(std::chrono::milliseconds interval)
{
    m_state->sessions.setPingInterval(interval);
}

void AdServer::grantRewards()
{
    m_state->transactions.grantRewards();
}

void AdServer::reset()
{
    m_state->faults.clear();
    m_state->beginAnew();
}

} // namespace adserver
