#pragma once

#include "AnswerBody.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace adserver
{

/// What a request is answered with, before it becomes HTTP.
struct Answer {
    int status = 200;
    std::string contentType = {};
    std::map<std::string, std::string> headers = {};
    std::string text = {};
    /// In place of `text` when set.
    std::shared_ptr<const AnswerBody> body = {};

    bool chunked = false;
    std::optional<std::uint64_t> cutBodyAfter = {};
    std::optional<std::uint64_t> stallBodyAfter = {};
    /// Nothing: until the client goes away.
    std::optional<std::chrono::milliseconds> stallFor = {};
    std::uint64_t bytesPerSecond = 0;

    [[nodiscard]] static Answer json(const nlohmann::json& value, int status = 200);
    /// {"error": code}, and the reason beside it when there is one.
    [[nodiscard]] static Answer error(int status, const std::string& code, const std::string& reason = {});

    [[nodiscard]] static Answer nothing() { return {.status = 204}; }

    [[nodiscard]] static Answer notFound() { return error(404, "NOT_FOUND"); }

    [[nodiscard]] static Answer badRequest(const std::string& reason)
    {
        return error(400, "BAD_REQUEST", reason);
    }
};

} // namespace adserver
