#include "AdServer.h"

#include "AdEndpoints.h"
#include "CampaignCatalogue.h"
#include "CampaignReader.h"
#include "CertificateAuthority.h"
#include "ControlEndpoints.h"
#include "FaultTable.h"
#include "FileEndpoint.h"
#include "HTTPListener.h"
#include "RequestLog.h"
#include "RequestPipeline.h"
#include "SessionTable.h"
#include "StorePage.h"
#include "TransactionTable.h"
#include "VASTEndpoints.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace adserver
{

class AdServer::Machinery
{
public:
    Machinery(AdServerOptions given, AdServer& server)
        : options(std::move(given))
        , sessions(options.pingInterval, options.sessionLifetime)
        , control(server, sessions)
        , ads(sessions, transactions, campaigns)
        , vast(campaigns)
        , files(campaigns)
        , store(campaigns)
        , pipeline({faults, log, control, ads, vast, files, store}, scheme(), options.clock)
    {
    }

    [[nodiscard]] std::string scheme() const { return options.plainHTTP ? "http" : "https"; }

    void beginAnew()
    {
        sessions.expireAll();
        sessions.setPingInterval(options.pingInterval);
        transactions.clear();
        campaigns.restart();
        log.clear();
        faults.replaceCampaignFaults(campaigns.faults());
    }

    /// Guards `listener` and `authorityFile`; not held while answering.
    mutable std::mutex mutex;
    const AdServerOptions options;
    CampaignCatalogue campaigns;
    TransactionTable transactions;
    FaultTable faults;
    RequestLog log;
    SessionTable sessions;
    ControlEndpoints control;
    AdEndpoints ads;
    VASTEndpoints vast;
    FileEndpoint files;
    StorePage store;
    RequestPipeline pipeline;
    std::filesystem::path authorityFile;
    std::unique_ptr<HTTPListener> listener;
};

AdServer::AdServer(AdServerOptions options)
    : m_machinery(std::make_unique<Machinery>(std::move(options), *this))
{
}

AdServer::~AdServer()
{
    stop();
}

void AdServer::start()
{
    auto& machinery = *m_machinery;
    const std::lock_guard lock(machinery.mutex);
    if (machinery.listener)
        return;
    machinery.campaigns.read(machinery.options.campaignsFolder);
    machinery.beginAnew();
    machinery.log.open(machinery.options.logFile);
    TLSContextPointer tls;
    machinery.authorityFile.clear();
    if (!machinery.options.plainHTTP) {
        const auto& folder = machinery.options.stateFolder;
        const CertificateAuthority authority(folder.empty() ? CertificateAuthority::defaultFolder() : folder,
                                             machinery.options.clock());
        tls = authority.makeTLSContext();
        machinery.authorityFile = authority.authorityFile();
    }
    auto listener = std::make_unique<HTTPListener>(
        std::move(tls),
        [&machinery](const httplib::Request& request, ClientConnection& connection) {
            return machinery.pipeline.respond(request, connection);
        },
        [&machinery](const RequestLogEntry& entry) { machinery.log.note(entry); });
    listener->listen(machinery.options.port);
    machinery.listener = std::move(listener);
}

void AdServer::stop()
{
    std::unique_ptr<HTTPListener> ending;
    {
        const std::lock_guard lock(m_machinery->mutex);
        ending = std::move(m_machinery->listener);
    }
    if (ending)
        ending->stop();
}

std::uint16_t AdServer::port() const
{
    const std::lock_guard lock(m_machinery->mutex);
    return m_machinery->listener ? m_machinery->listener->port() : std::uint16_t{0};
}

std::string AdServer::baseURL() const
{
    return m_machinery->scheme() + "://localhost:" + std::to_string(port());
}

std::filesystem::path AdServer::authorityFile() const
{
    const std::lock_guard lock(m_machinery->mutex);
    return m_machinery->authorityFile;
}

void AdServer::addCampaign(const std::string& name, const std::string& text,
                           const std::filesystem::path& folder)
{
    auto& campaigns = m_machinery->campaigns;
    campaigns.add(readCampaign(name, text, folder.empty() ? m_machinery->options.campaignsFolder : folder));
    m_machinery->faults.replaceCampaignFaults(campaigns.faults());
}

std::vector<std::string> AdServer::campaignErrors() const
{
    return m_machinery->campaigns.errors();
}

std::vector<std::string> AdServer::checkCampaigns(const std::filesystem::path& folder)
{
    CampaignCatalogue campaigns;
    campaigns.read(folder);
    return campaigns.errors();
}

void AdServer::setFault(const AdServerFault& fault)
{
    m_machinery->faults.set(fault);
}

void AdServer::clearFaults()
{
    m_machinery->faults.clear();
}

std::vector<RequestLogEntry> AdServer::requests() const
{
    return m_machinery->log.requests();
}

void AdServer::clearRequests()
{
    m_machinery->log.clear();
}

bool AdServer::waitUntil(const std::function<bool(const std::vector<RequestLogEntry>&)>& condition,
                         std::chrono::milliseconds timeout) const
{
    return m_machinery->log.waitUntil(condition, timeout);
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
    m_machinery->sessions.expireAll();
}

void AdServer::setPingInterval(std::chrono::milliseconds interval)
{
    m_machinery->sessions.setPingInterval(interval);
}

void AdServer::grantRewards()
{
    m_machinery->transactions.grantRewards();
}

void AdServer::reset()
{
    m_machinery->faults.clear();
    m_machinery->beginAnew();
}

} // namespace adserver
