#include "VIRLOVASTTrackingManager.h"

#include "Exception.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOFrameworkBundle.h"
#include "VIRLOVASTAd.h"
#include "VIRLOVASTCreative.h"
#include "VIRLOVASTImpression.h"

#include <utility>

using virlo::OptionalError;
using virlo::URLSession;

namespace
{

constexpr std::size_t maximumResponseSize = std::size_t{64} << 10;

/// The body is ignored, so a response that is cut off for its length counts by its status.
bool wasDelivered(long status, const OptionalError& error)
{
    const bool tooLong =
        error && error->domain == URLSession::errorDomain && error->code == URLSession::bodyTooLong;
    return status >= 200 && status <= 399 && (!error || tooLong);
}

} // namespace

VIRLOVASTTrackingManager::VIRLOVASTTrackingManager(std::shared_ptr<URLSession> session)
    : m_session(std::move(session))
{
}

VIRLOVASTTrackingManager::~VIRLOVASTTrackingManager()
{
    m_session->finishTasksAndInvalidate();
}

std::shared_ptr<VIRLOVASTTrackingManager> VIRLOVASTTrackingManager::sharedManager()
{
    static const auto& shared = *new std::shared_ptr<VIRLOVASTTrackingManager>(initSingleton());
    return shared;
}

void VIRLOVASTTrackingManager::init()
{
    virlo::raise("Singleton", "Use + [KSTVVASTTrackingManager sharedManager]");
}

std::shared_ptr<VIRLOVASTTrackingManager> VIRLOVASTTrackingManager::initSingleton()
{
    return initWithSession(URLSession::sessionWithConfiguration(sessionConfiguration()));
}

std::shared_ptr<VIRLOVASTTrackingManager>
VIRLOVASTTrackingManager::initWithSession(std::shared_ptr<URLSession> session)
{
    return std::shared_ptr<VIRLOVASTTrackingManager>(new VIRLOVASTTrackingManager(std::move(session)));
}

virlo::URLSessionConfiguration VIRLOVASTTrackingManager::sessionConfiguration()
{
    auto configuration = virlo::URLSessionConfiguration::defaultConfiguration();
    configuration.additionalHeaders = {
        {"User-Agent", generateUserAgentFromBundle(VIRLOFrameworkBundle::bundle())},
        {"Accept", "application/json"},
        {"Content-Type", "application/json"}};
    return configuration;
}

std::string VIRLOVASTTrackingManager::generateUserAgentFromBundle(const virlo::Bundle& bundle)
{
    return virlo::format("%@ %@ / %@ %@", bundle.info("CFBundleName"),
                         bundle.info("CFBundleShortVersionString"), bundle.info("DTPlatformName"),
                         bundle.info("DTPlatformVersion"));
}

void VIRLOVASTTrackingManager::reportImpressionForAd(const VIRLOVASTAd& ad)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Reporting Impression for Ad: %@", ad);
    for (const auto& impression : ad.impressions()) {
        if (impression->url())
            reportAtURL(*impression->url());
    }
}

void VIRLOVASTTrackingManager::reportEventForCreative(const std::string& event,
                                                      const VIRLOVASTCreative& creative)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Reporting Event %@ for Creative: %@", event, creative);
    if (!creative.trackingEvents())
        return;
    const auto found = creative.trackingEvents()->find(event);
    if (found == creative.trackingEvents()->end())
        return;
    for (const virlo::URL& url : found->second)
        reportAtURL(url);
}

void VIRLOVASTTrackingManager::reportAtURL(const virlo::URL& url)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Reporting at URL: %@", url);
    virlo::URLRequest request{url};
    request.maximumBodySize = maximumResponseSize;
    m_session
        ->dataTask(std::move(request),
                   [url](const std::string&, const auto& response, const OptionalError& error) {
                       const long status = response ? response->statusCode : 0;
                       if (!wasDelivered(status, error))
                           VIRLOAdFrameworkLogger::logNoticeWithFormat(
                               "Failed to report event at URL %@, status: %@, error: %@", url, status, error);
                   })
        ->resume();
}
