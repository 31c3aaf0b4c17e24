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

/// Everything said to the ad server: the session (opened, kept alive by pings, reopened when the server calls
/// it invalid, closed at the end), the one way in which requests are made and answers sorted, and one
/// operation for each exchange. Owned by VIRLOAdController; screens hold it weakly. What is parked for a
/// session when the object goes is dropped.
///
/// Every operation may be called from any thread and returns at once. Completions run on the HTTP session's
/// serial queue. Nothing is tried again here but the session itself (every 60 s, for ever).
///
/// Errors, by domain:
/// - `httpErrorDomain`: the server refused. Code: the HTTP status. User info: the server's JSON object, whose
///   key "error" holds the server's own code, or "Reason" where it sent none.
/// - `noPayloadErrorDomain`, code 0: a success without a body.
/// - `unexpectedResponseErrorDomain`, code 0: no HTTP answer came, for whatever cause.
/// - `JSONSerialization::errorDomain`: a success whose body is no JSON, or a request's that cannot be.
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
    /// The parsed body or nothing, an error or nothing, the HTTP answer's head or nothing. The body may be
    /// any JSON value.
    using RequestCompletion =
        std::function<void(const std::optional<virlo::JSON>&, const virlo::OptionalError&, const Response&)>;
    using ErrorCompletion = std::function<void(const virlo::OptionalError&)>;
    using AdvertisementCompletion =
        std::function<void(std::shared_ptr<VIRLOAdvertisement>, const virlo::OptionalError&)>;
    /// Index of the first new item, the number of elements in the answer, an error or nothing.
    using MoreItemsCompletion = std::function<void(std::size_t, std::size_t, const virlo::OptionalError&)>;
    using CurrencyCompletion =
        std::function<void(bool rewarded, const std::optional<virlo::JSON>&, const virlo::OptionalError&)>;
    using URLCompletion = std::function<void(const std::optional<virlo::URL>&, const virlo::OptionalError&)>;

    [[nodiscard]] static std::shared_ptr<VIRLOAdServerAPI> initWithBaseURL(const virlo::URL& url);
    /// On a transport of the caller's, which `maker` makes with the headers that every request carries.
    [[nodiscard]] static std::shared_ptr<VIRLOAdServerAPI>
    initWithBaseURLMakingSession(const virlo::URL& url, const SessionMaker& maker);

    ~VIRLOAdServerAPI();
    VIRLOAdServerAPI(const VIRLOAdServerAPI&) = delete;
    VIRLOAdServerAPI& operator=(const VIRLOAdServerAPI&) = delete;

    [[nodiscard]] const virlo::URL& entryPoint() const noexcept { return m_entryPoint; }

    [[nodiscard]] std::string appIdentifier() const;
    void setAppIdentifier(std::string identifier);

    /// The server session. `startSession` and `pingSession` build their requests on a worker when called on
    /// the main thread, since the device's facts are read from files.
    void startSession();
    void pingSession();
    /// What the session's timer calls, on the main thread.
    void keepUpSession();
    /// Tells the server and stops the timer; no answer that is still under way revives the session.
    void endSession();

    /// Null where there is none.
    [[nodiscard]] std::shared_ptr<VIRLOSession> serverSession() const;
    /// A session that is active releases what is parked.
    void setServerSession(std::shared_ptr<VIRLOSession> session);
    /// True from the start of `startSession` until its answer has been handled.
    [[nodiscard]] bool updatingServerSession() const;
    void setUpdatingServerSession(bool updating);

    /// One exchange. Where `dictionary` cannot be written as JSON the completion gets that error at once on
    /// the caller's stack, and the request is still sent without a body, so the completion is called a second
    /// time. Without a URL it fails as when no answer comes.
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

    /// Runs `work` at once on the caller's thread where there are a session and a network; otherwise parks it
    /// until an active session is there, and then runs it on a worker, in no given order.
    void checkSessionAndDo(std::function<void()> work);
    void retryQueuedRequests();

    [[nodiscard]] static std::string generateUserAgent();
    [[nodiscard]] static std::string generateUserAgentFromBundle(const virlo::Bundle& bundle);
    /// For a build in which the library is part of the host's program and has no bundle of its own.
    [[nodiscard]] static std::string generateUserAgentForStaticLibrary();
    /// What opens a session: facts about device, app and library; those unknown are left out. Reads small
    /// files.
    [[nodiscard]] static virlo::JSON deviceDataDictionary();

    /// Waits for a session. The type Any sets no condition.
    void retrieveAdvertisementForPlacementOfTypeWithCompletion(const std::string& placement,
                                                               VIRLOAdvertisementType type,
                                                               AdvertisementCompletion completion);
    /// Fetches more items into `advertisement`. Callers who ask for the same advertisement (by its `txId`)
    /// while a request is under way share its answer. A failure gives (0, 0, error) and leaves the
    /// advertisement as it is.
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
    /// Waits for a session. The flag is the answer's "status".
    void checkAvailableCurrencyForURLWithCompletion(const virlo::URL& url, CurrencyCompletion completion);
    /// Waits for a session; the answer is ignored.
    void reportCurrentPlacement(const std::string& placement);
    /// Follows the link; the completion gets the URL at which it ended, also beside an error (a page is no
    /// JSON).
    void initiateAppDownloadByURLWithCompletion(const std::optional<virlo::URL>& url,
                                                URLCompletion completion);

    /// True where nobody waits for this advertisement's items yet.
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
    void sessionStartDidEnd(const std::optional<virlo::JSON>& answer, const virlo::OptionalError& error);
    void sendSessionPing();
    void pingDidEnd(const std::optional<virlo::JSON>& answer, const virlo::OptionalError& error);
    void scheduleSessionTimer(double seconds, void (VIRLOAdServerAPI::*work)());

    const virlo::URL m_entryPoint;
    std::shared_ptr<virlo::URLSession> m_session;
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
};
