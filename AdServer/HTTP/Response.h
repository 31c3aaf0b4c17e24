#pragma once

#include "ResponseBody.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace adserver
{

/// What a request is responded to with, before it becomes HTTP.
struct Response {
    int status = 200;
    std::string contentType = {};
    std::map<std::string, std::string> headers = {};
    std::string text = {};
    /// In place of `text` when set.
    std::shared_ptr<const ResponseBody> body = {};

    /// The ad transaction that it begins; empty for all others.
    std::string transaction = {};

    bool chunked = false;
    std::optional<std::uint64_t> cutBodyAfter = {};
    std::optional<std::uint64_t> stallBodyAfter = {};
    /// Nothing: until the client goes away.
    std::optional<std::chrono::milliseconds> stallFor = {};
    std::uint64_t bytesPerSecond = 0;

    [[nodiscard]] static Response json(const nlohmann::json& value, int status = 200);
    /// {"error": code}, and the reason beside it when there is one.
    [[nodiscard]] static Response error(int status, const std::string& code, const std::string& reason = {});

    [[nodiscard]] static Response nothing() { return {.status = 204}; }

    [[nodiscard]] static Response notFound() { return error(404, "NOT_FOUND"); }

    [[nodiscard]] static Response badRequest(const std::string& reason)
    {
        return error(400, "BAD_REQUEST", reason);
    }
};

} // namespace adserver
