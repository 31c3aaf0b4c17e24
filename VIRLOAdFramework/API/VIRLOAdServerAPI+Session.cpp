#include "GlobalQueue.h"
#include "JSONReading.h"
#include "MainLoop.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOSession.h"
#include "VIRLOUserProfile.h"

#include <cmath>
#include <utility>

using virlo::JSON;
using virlo::OptionalError;

namespace
{
constexpr double retryInterval = 60;
constexpr std::size_t requestsForAverageSpeed = 10;

// A server that sends no interval, or a very short one, is pinged so a few times in a row, then once a
// second.
constexpr int mostShortIntervals = 5;
constexpr double intervalAfterShortOnes = 1;

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
        [weak = weak_from_this()](const std::optional<JSON>& payload, const OptionalError& error,
                                  const Response&) {
            if (const auto self = weak.lock())
                self->sessionStartDidEnd(payload, error);
        });
}

void VIRLOAdServerAPI::sessionStartDidEnd(const std::optional<JSON>& payload, const OptionalError& error)
{
    const auto session = payload ? VIRLOSession::initWithDictionary(*payload) : nullptr;
    setServerSession(session);
    if (!error && session) {
        VIRLOAdFrameworkLogger::logInfoWithFormat("Session started: %@", session);
        scheduleKeepUp(session->pingInterval());
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
    // Deliberate: the interval's average only decides whether a speed is sent; the speed is the average of
    // the last requests.
    float speed = monitor->averageDownloadSpeedKOverLastInterval(session ? session->pingInterval() : 0);
    if (!std::isnan(speed))
        speed = monitor->averageDownloadSpeedKDuringLastRequests(requestsForAverageSpeed);

    JSON body = JSON::object();
    if (std::isfinite(speed)) { // transfers too short to be timed give infinity, which JSON lacks
        body["connectionSpeed"] = speed;
        VIRLOAdFrameworkLogger::logInfoWithFormat("AVG download speed: %f kbps", speed);
    }
    body["user"] = VIRLOUserProfile::sharedProfile()->profileDictionary();
    sessionPUTwithDicitonaryToURLWithCompletionHandler(
        body, sessionURL(),
        [weak = weak_from_this()](const std::optional<JSON>& payload, const OptionalError& error,
                                  const Response&) {
            if (const auto self = weak.lock())
                self->pingDidEnd(payload, error);
        });
}

void VIRLOAdServerAPI::pingDidEnd(const std::optional<JSON>& payload, const OptionalError& error)
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
        session->updateWithDictionary(payload.value_or(JSON()));
        delay = session->pingInterval();
    }
    scheduleKeepUp(delay);
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

void VIRLOAdServerAPI::scheduleKeepUp(double interval)
{
    {
        const std::lock_guard lock(m_mutex);
        m_shortIntervals = interval < intervalAfterShortOnes ? m_shortIntervals + 1 : 0;
        if (m_shortIntervals > mostShortIntervals) {
            m_shortIntervals = mostShortIntervals;
            interval = intervalAfterShortOnes;
        }
    }
    scheduleSessionTimer(interval, &VIRLOAdServerAPI::keepUpSession);
}

void VIRLOAdServerAPI::scheduleSessionTimer(double seconds, void (VIRLOAdServerAPI::*work)())
{
    auto timer = virlo::Timer::once(virlo::Seconds(seconds), [weak = weak_from_this(), work] {
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
    // The previous timer is released, and thereby invalidated, after the lock.
    const std::lock_guard lock(m_mutex);
    if (!m_sessionEnded)
        m_sessionKeepUpTimer.swap(timer);
}
