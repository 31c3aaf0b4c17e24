#pragma once

#include "NotificationCenter.h"
#include "OperationQueue.h"
#include "SerialQueue.h"
#include "Timer.h"
#include "URL.h"
#include "URLSession.h"
#include "VIRLOCompletionTable.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class VIRLOAdItem;
class VIRLOAdvertisement;
class VIRLOReachability;
class VIRLOSession;
enum class VIRLOAdvertisementType : std::uint64_t;

namespace virlo
{
class Bundle;
}

/// The connection to the ad server: the session (opened, kept alive by pings, reopened when the server calls
/// it invalid, closed at the end), the request primitive that sorts responses into payload and error, and one
/// operation for each endpoint. Owned by VIRLOAdController; screens hold it weakly. Requests still parked
/// when the object is destroyed are dropped.
///
/// Every operation may be called from any thread and returns at once. Completions run on the HTTP session's
/// serial queue. Only the start of the session is retried (every 60 s, without end).
///
/// Errors, by domain:
/// - `httpErrorDomain`: the server refused. Code: the HTTP status. User info: the server's JSON object, whose
///   key "error" holds the server's own code, or "Reason" where it sent none.
/// - `noPayloadErrorDomain`, code 0: a success without a body.
/// - `unexpectedResponseErrorDomain`, code 0: there was no HTTP response, whatever the cause.
/// - `JSONSerialization::errorDomain`: the body of a success is no JSON object or array, or that of a request
///   cannot be encoded.
class VIRLOAdServerAPI : public std::enable_shared_from_this<VIRLOAdServerAPI>
{
public:
    static constexpr const char* httpErrorDomain = "com.virlohq.error.ServerRespondedWithHTTPError";
    static constexpr const char* noPayloadErrorDomain = "com.virlohq.error.noPayload";
    static constexpr const char* unexpectedResponseErrorDomain = "com.virlohq.error.unexpectedServerResponse";
    static const char* const kSessionSyncQueue;
    static const char* const kAdvertisementUpdateQueue;

    using SessionMaker = std::function<std::shared_ptr<virlo::URLSession>(virlo::URLSessionConfiguration)>;
    using Response = std::optional<virlo::HTTPURLResponse>;
    /// The parsed body (an object or an array) or nothing, an error or nothing, the response's head or
    /// nothing.
    using RequestCompletion =
        std::function<void(const std::optional<virlo::JSON>&, const virlo::OptionalError&, const Response&)>;
    using ErrorCompletion = std::function<void(const virlo::OptionalError&)>;
    using AdvertisementCompletion =
        std::function<void(std::shared_ptr<VIRLOAdvertisement>, const virlo::OptionalError&)>;
    /// Index of the first new item, the number of elements in the response, an error or nothing.
    using MoreItemsCompletion = std::function<void(std::size_t, std::size_t, const virlo::OptionalError&)>;
    using CurrencyCompletion =
        std::function<void(bool rewarded, const std::optional<virlo::JSON>&, const virlo::OptionalError&)>;
    using URLCompletion = std::function<void(const std::optional<virlo::URL>&, const virlo::OptionalError&)>;

    [[nodiscard]] static std::shared_ptr<VIRLOAdServerAPI> initWithBaseURL(const virlo::URL& url);
    /// `maker` makes the HTTP session from a configuration with the headers of every request.
    [[nodiscard]] static std::shared_ptr<VIRLOAdServerAPI>
    initWithBaseURLMakingSession(const virlo::URL& url, const SessionMaker& maker);

    ~VIRLOAdServerAPI();
    VIRLOAdServerAPI(const VIRLOAdServerAPI&) = delete;
    VIRLOAdServerAPI& operator=(const VIRLOAdServerAPI&) = delete;

    [[nodiscard]] const virlo::URL& entryPoint() const noexcept { return m_entryPoint; }

    [[nodiscard]] std::string appIdentifier() const;
    void setAppIdentifier(std::string identifier);

    /// `startSession` and `pingSession` called on the main thread build their requests on a worker, because
    /// facts about the device are read from files. Intervals between pings are the server's; after five in a
    /// row under a second the next ones are a second apart until the server names a longer one.
    void startSession();
    void pingSession();
    /// Called by the session's timer, on the main thread.
    void keepUpSession();
    /// Tells the server and stops the timer; a response that arrives later does not restart the session.
    void endSession();

    /// Null where there is none.
    [[nodiscard]] std::shared_ptr<VIRLOSession> serverSession() const;
    /// An active session releases the parked requests.
    void setServerSession(std::shared_ptr<VIRLOSession> session);
    /// True from the start of `startSession` until its response has been handled.
    [[nodiscard]] bool updatingServerSession() const;
    void setUpdatingServerSession(bool updating);

    /// Sends one request. If `dictionary` cannot be encoded as JSON, the completion gets that error at once
    /// on the caller's stack, and the request is still sent, without a body, so the completion is called a
    /// second time. Without a URL it fails as without a response. The names of the next four keep the
    /// spelling "Dicitonary".
    void sessionRequestOfTypeToURLWithDictionaryAndCompletionHandler(
        const std::string& method, const std::optional<virlo::URL>& url,
        const std::optional<virlo::JSON>& dictionary, RequestCompletion completion);
    void sessionGETtoURLWithCompletionHandler(const std::optional<virlo::URL>& url,
                                              RequestCompletion completion);
    void sessionPOSTwithDicitonaryToURLWithCompletionHandler(const std::optional<virlo::JSON>& dictionary,
                                                             const std::optional<virlo::URL>& url,
                                                             RequestCompletion completion);
    void sessionPUTwithDicitonaryToURLWithCompletionHandler(const std::optional<virlo::JSON>& dictionary,
                                                            const std::optional<virlo::URL>& url,
                                                            RequestCompletion completion);
    void sessionDELETEwithDicitonaryToURLWithCompletionHandler(const std::optional<virlo::JSON>& dictionary,
                                                               const std::optional<virlo::URL>& url,
                                                               RequestCompletion completion);

    /// Runs `work` at once on the caller's thread if there are a session and a network; otherwise parks it
    /// until a session becomes active, and then runs it on a worker, in no given order.
    void checkSessionAndDo(std::function<void()> work);
    void retryQueuedRequests();

    [[nodiscard]] static std::string generateUserAgent();
    [[nodiscard]] static std::string generateUserAgentFromBundle(const virlo::Bundle& bundle);
    /// For a build where the library is part of the host's program and has no bundle.
    [[nodiscard]] static std::string generateUserAgentForStaticLibrary();
    /// The body of the session start: facts about device, app and library, without the unknown ones. Reads
    /// small files.
    [[nodiscard]] static virlo::JSON deviceDataDictionary();

    /// Waits for a session. Any stands for every type.
    void retrieveAdvertisementForPlacementOfTypeWithCompletion(const std::string& placement,
                                                               VIRLOAdvertisementType type,
                                                               AdvertisementCompletion completion);
    /// Fetches more items into `advertisement`. Calls for the same advertisement (by its `txId`) share a
    /// running request's response; a call made from a completion starts a new request. A failure gives (0, 0,
    /// error) and does not change the advertisement.
    void retrieveAdditionalItemsForAdWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                    MoreItemsCompletion completion);
    void registerImpressionForItemWithCompletion(const VIRLOAdItem& item, ErrorCompletion completion);
    void registerClickForItemWithCompletion(const VIRLOAdItem& item, ErrorCompletion completion);
    void registerClickForItemWithDataWithCompletion(const VIRLOAdItem& item, const virlo::JSON& data,
                                                    ErrorCompletion completion);
    /// The completion may be empty.
    void submitDataForItemWithCompletion(const virlo::JSON& data, const VIRLOAdItem& item,
                                         ErrorCompletion completion);
    /// Reads small files, so not from the main thread.
    void registerAppWithCompletion(ErrorCompletion completion);
    /// Waits for a session.
    void registerUsernameForVirtualCurrencyWithCompletion(const std::string& userId,
                                                          ErrorCompletion completion);
    /// Waits for a session. The flag is the response's "status".
    void checkAvailableCurrencyForURLWithCompletion(const virlo::URL& url, CurrencyCompletion completion);
    /// Waits for a session; the response is ignored.
    void reportCurrentPlacement(const std::string& placement);
    /// Follows the link; the completion gets the final URL, often together with an error, since a page is no
    /// JSON.
    void initiateAppDownloadByURLWithCompletion(const std::optional<virlo::URL>& url,
                                                URLCompletion completion);

    /// True if no other handler waits for this advertisement's items: the caller makes the request.
    [[nodiscard]] bool addCompletionHandlerForAdvertisementUpdate(MoreItemsCompletion handler,
                                                                  const VIRLOAdvertisement& advertisement);
    [[nodiscard]] std::vector<MoreItemsCompletion>
    completionHandlersForAdvertisementUpdate(const VIRLOAdvertisement& advertisement);
    void removeCompletionHandlersForAdvertisementUpdate(const VIRLOAdvertisement& advertisement);

private:
    explicit VIRLOAdServerAPI(const virlo::URL& url, const SessionMaker& maker);

    [[nodiscard]] virlo::URL identifiedURL(const std::string& path, const std::string& identifier) const;
    [[nodiscard]] virlo::URL sessionURL() const;
    void reachabilityChanged();

    void restartSession();
    void sendSessionStart();
    void sessionStartDidEnd(const std::optional<virlo::JSON>& payload, const virlo::OptionalError& error);
    void sendSessionPing();
    void pingDidEnd(const std::optional<virlo::JSON>& payload, const virlo::OptionalError& error);
    void scheduleKeepUp(double interval);
    void scheduleSessionTimer(double seconds, void (VIRLOAdServerAPI::*work)());

    const virlo::URL m_entryPoint;
    std::shared_ptr<virlo::URLSession> m_session; ///< the HTTP session; `m_serverSession` is the ad server's
    std::shared_ptr<VIRLOReachability> m_reachability;
    std::unique_ptr<virlo::NotificationCenter::Observation> m_reachabilityObservation;
    VIRLOCompletionTable<MoreItemsCompletion> m_completionHandlersForAdvertisementUpdate;

    mutable virlo::SerialQueue m_sessionSyncQueue; ///< guards the next four
    std::shared_ptr<VIRLOSession> m_serverSession;
    bool m_updatingServerSession = false;
    virlo::OperationQueue m_pendingRequests;
    unsigned m_releases = 0;

    mutable std::mutex m_mutex; ///< guards the rest
    std::string m_appIdentifier;
    std::shared_ptr<virlo::Timer> m_sessionKeepUpTimer;
    bool m_sessionEnded = false;
    int m_shortIntervals = 0; ///< in a row
};
