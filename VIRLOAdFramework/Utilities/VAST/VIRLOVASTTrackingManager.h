#pragma once

#include "Bundle.h"
#include "URLSession.h"

#include <memory>
#include <optional>
#include <string>

class VIRLOVASTAd;
class VIRLOVASTCreative;

/// Tells the addresses of VAST ads that an ad was shown and how far it has played: a GET of each, with
/// nothing awaited, repeated or kept. A ping that fails is lost after a line at the notice level. Any thread;
/// nothing waits.
class VIRLOVASTTrackingManager
{
public:
    /// The one manager, which lives as long as the process.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTTrackingManager> sharedManager();
    /// Raises an Exception named "Singleton".
    [[noreturn]] static void init();
    /// On a session of its own.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTTrackingManager> initSingleton();
    /// On a transport of the caller's, made with `sessionConfiguration`.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTTrackingManager>
    initWithSession(std::shared_ptr<virlo::URLSession> session);

    /// Lets the pings under way finish.
    ~VIRLOVASTTrackingManager();
    VIRLOVASTTrackingManager(const VIRLOVASTTrackingManager&) = delete;
    VIRLOVASTTrackingManager& operator=(const VIRLOVASTTrackingManager&) = delete;

    /// Pings the ad's impressions, in their order. One without a URL is passed over.
    void reportImpressionForAd(const VIRLOVASTAd& ad);
    /// Pings what the creative has for the event; nothing where it has nothing.
    void reportEventForCreative(const std::string& event, const VIRLOVASTCreative& creative);
    void reportAtURL(const virlo::URL& url);

    /// The default one with the headers of every ping.
    [[nodiscard]] static virlo::URLSessionConfiguration sessionConfiguration();
    /// "NAME VERSION / PLATFORM VERSION"; what the bundle does not know is "(null)".
    [[nodiscard]] static std::string generateUserAgentFromBundle(const virlo::Bundle& bundle);

private:
    explicit VIRLOVASTTrackingManager(std::shared_ptr<virlo::URLSession> session);

    const std::shared_ptr<virlo::URLSession> m_session;
};
