#pragma once

#include "Bundle.h"
#include "URLSession.h"

#include <memory>
#include <optional>
#include <string>

class VIRLOVASTAd;
class VIRLOVASTCreative;

/// Sends the pings of VAST ads: a GET of each impression URL of an ad, or of each tracking URL of a
/// creative's event. Nothing is retried or stored; a ping that fails is lost after a log line at the notice
/// level. Any thread; nothing waits for the network.
class VIRLOVASTTrackingManager
{
public:
    /// The single instance, which lives as long as the process.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTTrackingManager> sharedManager();
    /// Raises an Exception named "Singleton".
    [[noreturn]] static void init();
    /// On a session of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTTrackingManager> initSingleton();
    /// On the caller's session, made with `sessionConfiguration`.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTTrackingManager>
    initWithSession(std::shared_ptr<virlo::URLSession> session);

    /// Running pings finish.
    ~VIRLOVASTTrackingManager();
    VIRLOVASTTrackingManager(const VIRLOVASTTrackingManager&) = delete;
    VIRLOVASTTrackingManager& operator=(const VIRLOVASTTrackingManager&) = delete;

    /// Pings the ad's impressions, in list order. One without a URL is skipped.
    void reportImpressionForAd(const VIRLOVASTAd& ad);
    /// Pings the URLs that the creative has for the event, if any.
    void reportEventForCreative(const std::string& event, const VIRLOVASTCreative& creative);
    void reportAtURL(const virlo::URL& url);

    /// The default configuration with the headers of every ping.
    [[nodiscard]] static virlo::URLSessionConfiguration sessionConfiguration();
    /// "NAME VERSION / PLATFORM VERSION"; a missing value is "(null)".
    [[nodiscard]] static std::string generateUserAgentFromBundle(const virlo::Bundle& bundle);

    [[nodiscard]] const std::shared_ptr<virlo::URLSession>& session() const noexcept { return m_session; }

private:
    explicit VIRLOVASTTrackingManager(std::shared_ptr<virlo::URLSession> session);

    const std::shared_ptr<virlo::URLSession> m_session;
};
