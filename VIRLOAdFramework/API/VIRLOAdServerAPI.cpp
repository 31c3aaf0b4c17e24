#include "VIRLOAdServerAPI.h"

#include "VIRLOReachability.h"
#include "VIRLOSession.h"

#include <utility>

const char* const VIRLOAdServerAPI::kSessionSyncQueue = "com.virlohq.VIRLOApiSessionSync";
const char* const VIRLOAdServerAPI::kAdvertisementUpdateQueue = "com.virlohq.VIRLOApiAdvertisementUpdate";

VIRLOAdServerAPI::VIRLOAdServerAPI(const virlo::URL& url, const SessionMaker& maker)
    : m_entryPoint(url)
    , m_reachability(VIRLOReachability::reachabilityForInternetConnection())
    , m_completionHandlersForAdvertisementUpdate(kAdvertisementUpdateQueue)
    , m_sessionSyncQueue(kSessionSyncQueue)
{
    virlo::URLSessionConfiguration configuration = virlo::URLSessionConfiguration::defaultConfiguration();
    configuration.additionalHeaders = {{"User-Agent", generateUserAgent()},
                                       {"Accept", "application/json"},
                                       {"Content-Type", "application/json"}};
    m_session = maker(std::move(configuration));
}

VIRLOAdServerAPI::~VIRLOAdServerAPI() = default;

std::shared_ptr<VIRLOAdServerAPI> VIRLOAdServerAPI::initWithBaseURL(const virlo::URL& url)
{
    return initWithBaseURLMakingSession(url, &virlo::URLSession::sessionWithConfiguration);
}

std::shared_ptr<VIRLOAdServerAPI> VIRLOAdServerAPI::initWithBaseURLMakingSession(const virlo::URL& url,
                                                                                 const SessionMaker& maker)
{
    std::shared_ptr<VIRLOAdServerAPI> api(new VIRLOAdServerAPI(url, maker));
    // Deliberate: the notifier is not started here, so changes are only posted while someone else runs it.
    api->m_reachabilityObservation = virlo::NotificationCenter::defaultCenter().addObserver(
        kVIRLOReachabilityChangedNotification,
        [weak = std::weak_ptr(api)](const virlo::Notification&) {
            if (const auto self = weak.lock())
                self->reachabilityChanged();
        },
        api->m_reachability.get());
    return api;
}

std::string VIRLOAdServerAPI::appIdentifier() const
{
    const std::lock_guard lock(m_mutex);
    return m_appIdentifier;
}

void VIRLOAdServerAPI::setAppIdentifier(std::string identifier)
{
    const std::lock_guard lock(m_mutex);
    m_appIdentifier = std::move(identifier);
}

std::shared_ptr<VIRLOSession> VIRLOAdServerAPI::serverSession() const
{
    return m_sessionSyncQueue.read([this] { return m_serverSession; });
}

void VIRLOAdServerAPI::setServerSession(std::shared_ptr<VIRLOSession> session)
{
    m_sessionSyncQueue.sync([&] { m_serverSession = session; });
    if (session && session->isActive())
        retryQueuedRequests();
}

bool VIRLOAdServerAPI::updatingServerSession() const
{
    return m_sessionSyncQueue.read([this] { return m_updatingServerSession; });
}

void VIRLOAdServerAPI::setUpdatingServerSession(bool updating)
{
    m_sessionSyncQueue.sync([&] { m_updatingServerSession = updating; });
}

void VIRLOAdServerAPI::checkSessionAndDo(std::function<void()> work)
{
    for (;;) {
        std::shared_ptr<VIRLOSession> session;
        unsigned releases = 0;
        m_sessionSyncQueue.sync([&] {
            session = m_serverSession;
            releases = m_releases;
        });
        if (session && m_reachability->currentReachabilityStatus() != VIRLOReachability::NotReachable) {
            work();
            return;
        }
        // Checked again: a session set or a release done since the check above would not release this work.
        const bool parked = m_sessionSyncQueue.read([&] {
            if (m_serverSession != session || m_releases != releases)
                return false;
            m_pendingRequests.setSuspended(true);
            m_pendingRequests.addOperation(std::move(work));
            return true;
        });
        if (parked)
            return;
    }
}

void VIRLOAdServerAPI::retryQueuedRequests()
{
    m_sessionSyncQueue.sync([this] {
        ++m_releases;
        m_pendingRequests.setSuspended(false);
    });
}

void VIRLOAdServerAPI::reachabilityChanged()
{
    if (m_reachability->currentReachabilityStatus() != VIRLOReachability::NotReachable)
        retryQueuedRequests();
}
