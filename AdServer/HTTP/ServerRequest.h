#pragma once

#include "Dates.h"

#include <map>
#include <string>
#include <string_view>

namespace adserver
{

/// A request as the endpoints see it; its body has been read whole.
struct ServerRequest {
    std::string method;
    /// Percent-decoded.
    std::string path;
    std::multimap<std::string, std::string> query;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
    /// "https://localhost:8443": what the client calls this server.
    std::string origin;
    TimePoint now;

    /// Empty when absent.
    [[nodiscard]] std::string header(const std::string& lowerCaseName) const
    {
        const auto found = headers.find(lowerCaseName);
        return found == headers.end() ? std::string() : found->second;
    }

    [[nodiscard]] std::string queryItem(const std::string& name) const
    {
        const auto found = query.find(name);
        return found == query.end() ? std::string() : found->second;
    }

    [[nodiscard]] std::string session() const { return header("vrl-sessionid"); }
};

} // namespace adserver
