#pragma once

#include "Endpoint.h"

#include <nlohmann/json.hpp>

#include <deque>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace adserver
{

/// Serves the responses of a request log again: those of one method, path and query in their order, the last
/// one for ever. Where no request of the log had that query, those of the path. What the log has no body of
/// (images, videos, texts that were cut) is left to the other endpoints. Addresses of the server that wrote
/// the log become this one's, and an advertisement's dates begin anew. Safe from any thread.
class ReplayEndpoint final : public Endpoint
{
public:
    /// An empty path serves nothing. Throws std::runtime_error when the log cannot be read, naming the line.
    explicit ReplayEndpoint(const std::filesystem::path& log);

    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const override;

private:
    using Responses = std::map<std::string, std::deque<nlohmann::json>>;

    [[nodiscard]] std::optional<nlohmann::json> take(const ServerRequest& request) const;

    mutable std::mutex m_mutex;
    mutable Responses m_responses;
};

} // namespace adserver
