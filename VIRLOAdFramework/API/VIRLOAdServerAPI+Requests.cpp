#include "JSONSerialization.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOSession.h"

#include <utility>

using virlo::Error;
using virlo::JSON;

namespace
{
// The server's responses are a few kilobytes.
constexpr std::size_t longestBody = std::size_t{16} << 20;

constexpr const char* unexpectedResponseReason = "Unexpected server response.";

Error errorWithReason(const char* domain, long code, const char* reason)
{
    return {domain, code, {{"Reason", reason}}};
}

Error httpError(long status, const std::string& data)
{
    auto body = virlo::JSONSerialization::objectWithData(data);
    const auto* parsed = std::get_if<JSON>(&body);
    if (parsed == nullptr || !parsed->is_object())
        return errorWithReason(VIRLOAdServerAPI::httpErrorDomain, status, unexpectedResponseReason);
    return {VIRLOAdServerAPI::httpErrorDomain, status, *parsed};
}

void completeWithResponse(const VIRLOAdServerAPI::RequestCompletion& completion, const std::string& data,
                          const VIRLOAdServerAPI::Response& response)
{
    if (!response) {
        completion(
            std::nullopt,
            errorWithReason(VIRLOAdServerAPI::unexpectedResponseErrorDomain, 0, unexpectedResponseReason),
            response);
    } else if (response->statusCode < 200 || response->statusCode >= 400) {
        completion(std::nullopt, httpError(response->statusCode, data), response);
    } else if (response->statusCode == 204) {
        completion(std::nullopt, std::nullopt, response);
    } else if (data.empty()) {
        completion(std::nullopt,
                   errorWithReason(VIRLOAdServerAPI::noPayloadErrorDomain, 0,
                                   "Server response does not contain payload."),
                   response);
    } else {
        auto parsed = virlo::JSONSerialization::objectWithData(data);
        if (auto* error = std::get_if<Error>(&parsed))
            completion(std::nullopt, std::move(*error), response);
        else
            completion(std::get<JSON>(std::move(parsed)), std::nullopt, response);
    }
}
} // namespace

void VIRLOAdServerAPI::sessionRequestOfTypeToURLWithDictionaryAndCompletionHandler(
    const std::string& method, const std::optional<virlo::URL>& url, const std::optional<JSON>& dictionary,
    RequestCompletion completion)
{
    if (!completion)
        completion = [](const std::optional<JSON>&, const virlo::OptionalError&, const Response&) {};
    if (!url) {
        m_session->queue().async(
            [completion = std::move(completion)] { completeWithResponse(completion, {}, std::nullopt); });
        return;
    }

    virlo::URLRequest request{.url = *url, .method = method, .headers = {}, .body = std::nullopt};
    request.maximumBodySize = longestBody;
    if (dictionary) {
        auto encoded = virlo::JSONSerialization::dataWithObject(*dictionary);
        // Deliberate: the request is still sent, without a body, so the completion is called a second time.
        if (auto* error = std::get_if<Error>(&encoded))
            completion(std::nullopt, *error, std::nullopt);
        else
            request.body = std::get<std::string>(std::move(encoded));
    }
    if (const auto session = serverSession())
        request.headers = {{"VRL-SessionId", session->identifier()}};

    // The transport's own error is not passed on: every failure without a response is the same error. One
    // that no later attempt mends is logged: a host that trusts the wrong authorities has nothing else to go
    // by.
    m_session
        ->dataTask(std::move(request),
                   [completion = std::move(completion)](const std::string& data, const Response& response,
                                                        const virlo::OptionalError& error) {
                       if (error && error->code == virlo::URLSession::untrusted)
                           VIRLOAdFrameworkLogger::logErrorWithFormat("The ad server is not trusted. %@",
                                                                      error);
                       completeWithResponse(completion, data, response);
                   })
        ->resume();
}

void VIRLOAdServerAPI::sessionGETtoURLWithCompletionHandler(const std::optional<virlo::URL>& url,
                                                            RequestCompletion completion)
{
    sessionRequestOfTypeToURLWithDictionaryAndCompletionHandler("GET", url, std::nullopt,
                                                                std::move(completion));
}

void VIRLOAdServerAPI::sessionPOSTwithDicitonaryToURLWithCompletionHandler(
    const std::optional<JSON>& dictionary, const std::optional<virlo::URL>& url, RequestCompletion completion)
{
    sessionRequestOfTypeToURLWithDictionaryAndCompletionHandler("POST", url, dictionary,
                                                                std::move(completion));
}

void VIRLOAdServerAPI::sessionPUTwithDicitonaryToURLWithCompletionHandler(
    const std::optional<JSON>& dictionary, const std::optional<virlo::URL>& url, RequestCompletion completion)
{
    sessionRequestOfTypeToURLWithDictionaryAndCompletionHandler("PUT", url, dictionary,
                                                                std::move(completion));
}

void VIRLOAdServerAPI::sessionDELETEwithDicitonaryToURLWithCompletionHandler(
    const std::optional<JSON>& dictionary, const std::optional<virlo::URL>& url, RequestCompletion completion)
{
    sessionRequestOfTypeToURLWithDictionaryAndCompletionHandler("DELETE", url, dictionary,
                                                                std::move(completion));
}
