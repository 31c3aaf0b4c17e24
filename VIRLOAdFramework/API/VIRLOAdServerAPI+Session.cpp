#include "GlobalQueue.h"
#include "MainLoop.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOSession.h"
#include "VIRLOUserProfile.h"

#include <algorithm>
#include <cmath>
#include <utility>

using virlo::JSON;
using virlo::OptionalError;

namespace
{
constexpr double retryInterval = 60;
// Beyond a day an interval of the server's is a mistake of its.
constexpr double longestInterval = 86400;
constexpr std::size_t requestsForAverageSpeed = 10;

void onWorker(std::function<void()> work)
{
    if (virlo::MainLoop::isMainThread())
        virlo::GlobalQueue::standard().async(std::move(work));
    else
        work();
}
} // namespace

void VIRLOAdServerAPI::startSession()
{
    {
        const std::lock_guard lock(m_mutex);
        m_sessionEnded = false;
    }
    restartSession();
}

void VIRLOAdServerAPI::restartSession()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_sessionEnded)
            return;
    }
    setUpdatingServerSession(true);
    onWorker([self = shared_from_this()] { self->sendSessionStart(); });
}

void VIRLOAdServerAPI::sendSessionStart()
{
    const JSON deviceData = deviceDataDictionary();
    VIRLOAdFrameworkLogger::logInfoWithFormat("Start session with dictionary: %@", deviceData);
    sessionPOSTwithDicitonaryToURLWithCompletionHandler(
        deviceData, identifiedURL("app/sess", appIdentifier()).appendingQueryItems({{"state", "start"}}),
        [weak = weak_from_this()](const std::optional<JSON>& answer, const OptionalError& error,
                                  const Response&) {
            if (const auto self = weak.lock())
                self->sessionStartDidEnd(answer, error);
        });
}

void VIRLOAdServerAPI::sessionStartDidEnd(const std::optional<JSON>& answer, const OptionalError& error)
{
    const auto session = answer ? VIRLOSession::initWithDictionary(*answer) : nullptr;
    setServerSession(session);
    if (!error && session) {
        VIRLOAdFrameworkLogger::logInfoWithFormat("Session started: %@", session);
        scheduleSessionTimer(session->pingInterval(), &VIRLOAdServerAPI::keepUpSession);
    } else {
        VIRLOAdFrameworkLogger::logErrorWithFormat("Cannot initiate session: %@", error);
        scheduleSessionTimer(retryInterval, &VIRLOAdServerAPI::restartSession);
    }
    setUpdatingServerSession(false);
}

void VIRLOAdServerAPI::keepUpSession()
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Keep up session. %@", serverSession());
    pingSession();
}

void VIRLOAdServerAPI::pingSession()
{
    if (!serverSession() && !updatingServerSession()) {
        restartSession();
        return;
    }
    onWorker([self = shared_from_this()] { self->sendSessionPing(); });
}

void VIRLOAdServerAPI::sendSessionPing()
{
    const auto session = serverSession();
    const auto monitor = VIRLOConnectionQualityMonitor::sharedMonitor();
    // The interval's average only decides whether a speed is told at all; the one told is that of the last
    // requests.
    float speed = monitor->averageDownloadSpeedKOverLastInterval(session ? session->pingInterval() : 0);
    if (!std::isnan(speed))
        speed = monitor->averageDownloadSpeedKDuringLastRequests(requestsForAverageSpeed);

    JSON body = JSON::object();
    if (std::isfinite(speed)) { // JSON has no infinity, which transfers too short to be timed give
        body["connectionSpeed"] = speed;
        VIRLOAdFrameworkLogger::logInfoWithFormat("AVG download speed: %f kbps", speed);
    }
    body["user"] = VIRLOUserProfile::sharedProfile()->profileDictionary();
    sessionPUTwithDicitonaryToURLWithCompletionHandler(
        body, sessionURL(),
        [weak = weak_from_this()](const std::optional<JSON>& answer, const OptionalError& error,
                                  const Response&) {
            if (const auto self = weak.lock())
                self->pingDidEnd(answer, error);
        });
}

void VIRLOAdServerAPI::pingDidEnd(const std::optional<JSON>& answer, const OptionalError& error)
{
    double delay = 0;
    if (error) {
        VIRLOAdFrameworkLogger::logWarningWithFormat(
            "Cannot send request to maintain session which is likely to expire. Error: %@", error);
        setServerSession(nullptr);
        if (virlo::JSONReading::string(error->userInfo, "error") == "INVALID_SESSION") {
            restartSession();
            return;
        }
        delay = retryInterval;
    } else if (const auto session = serverSession()) {
        session->updateWithDictionary(answer.value_or(JSON()));
        delay = session->pingInterval();
    }
    scheduleSessionTimer(delay, &VIRLOAdServerAPI::keepUpSession);
}

void VIRLOAdServerAPI::endSession()
{
    sessionDELETEwithDicitonaryToURLWithCompletionHandler(
        std::nullopt, sessionURL(),
        [](const std::optional<JSON>&, const OptionalError& error, const Response&) {
            if (error)
                VIRLOAdFrameworkLogger::logWarningWithFormat("Cannot close session. Error: %@", error);
        });
    const std::lock_guard lock(m_mutex);
    m_sessionEnded = true;
    if (m_sessionKeepUpTimer)
        m_sessionKeepUpTimer->invalidate();
    m_sessionKeepUpTimer = nullptr;
}

void VIRLOAdServerAPI::scheduleSessionTimer(double seconds, void (VIRLOAdServerAPI::*work)())
{
    const virlo::Seconds delay(std::clamp(seconds, 0.0, longestInterval));
    auto timer = virlo::Timer::once(delay, [weak = weak_from_this(), work] {
        const auto self = weak.lock();
        if (!self)
            return;
        {
            const std::lock_guard lock(self->m_mutex);
            if (self->m_sessionEnded)
                return;
        }
        (self.get()->*work)();
    });
    // The one before is let go of, and so ends, outside the lock.
    const std::lock_guard lock(m_mutex);
    if (!m_sessionEnded)
        m_sessionKeepUpTimer.swap(timer);
}
