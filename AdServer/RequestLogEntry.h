#pragma once

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

namespace adserver
{

/// One request and what became of it. It is logged before the response's last byte goes out, so a client that
/// has its response finds its entry in the log; one that gets no response is logged when its request has
/// been read.
struct RequestLogEntry {
    /// When the request's head had been read.
    std::chrono::system_clock::time_point time;
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

    /// Decoded value of the query's first item of that name; empty when there is none.
    [[nodiscard]] std::string queryItem(const std::string& name) const;
    /// What the log holds: {"time","method","path","query","session","body","status","bytes"}, "session" and
    /// "body" null when there was none. A body that is JSON is given as JSON, any other as text; one over 64
    /// KiB is cut.
    [[nodiscard]] nlohmann::ordered_json toJSON() const;
};

} // namespace adserver
