#pragma once

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace adserver
{

struct AdServerFault;

/// One request and what became of it. It is logged before the response's last byte goes out, so a client that
/// has its response finds its entry in the log; one that gets no response is logged when its request has
/// been read.
struct RequestLogEntry {
    /// Counts the requests since the process began; no two entries share one.
    std::uint64_t id = 0;
    /// When the request's head had been read.
    std::chrono::system_clock::time_point time;
    /// When it was logged: the response's last bytes go out right after that.
    std::chrono::system_clock::time_point end;
    std::string method;
    /// Percent-decoded, without the query.
    std::string path;
    /// As it was sent, without the "?".
    std::string query;
    /// The value of "VRL-SessionId"; empty when there was none.
    std::string session;
    /// The request's body as it came.
    std::string body;
    /// 0 when no response was given: dropped or never responded to.
    int status = 0;
    /// Bytes of the response, head included, before encryption.
    std::uint64_t bytes = 0;
    /// The request's headers, names in lower case, values percent-decoded (the HTTP layer does that).
    std::map<std::string, std::string> headers;
    /// Counts the connections since the start: requests with the same number shared one.
    std::uint64_t connection = 0;

    /// The ad transaction that it belongs to; empty when it belongs to none. A file's is the one whose
    /// advertisement or VAST document named it last.
    std::string transaction;
    /// Null when none applied.
    std::shared_ptr<const AdServerFault> fault;
    /// Of the response, as sent; empty when there was none.
    std::map<std::string, std::string> responseHeaders;
    /// A text's first `longestLoggedBody` bytes; empty for images, videos and the like.
    std::string responseBody;

    static constexpr std::size_t longestLoggedBody = 65536;

    /// Of a query as it was sent, decoded.
    [[nodiscard]] static std::multimap<std::string, std::string> queryItems(const std::string& query);
    /// Decoded value of the query's first item of that name; empty when there is none.
    [[nodiscard]] std::string queryItem(const std::string& name) const;
    /// What the log holds: {"time","method","path","query","session","body","status","bytes","id","end",
    /// "transaction","fault","connection","headers","responseHeaders","responseBody"}; "session", "body",
    /// "transaction", "fault" and "responseBody" null when there was none. The request's body is given as
    /// JSON where it is JSON, else as text; one over 64 KiB is cut. The response's is always text.
    [[nodiscard]] nlohmann::ordered_json toJSON() const;
    /// Without headers and bodies, but those of advertisements and VAST documents: what a list of requests
    /// needs. Adds the response's "type".
    [[nodiscard]] nlohmann::ordered_json summary() const;
};

} // namespace adserver
