#pragma once

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace adserver
{

/// What goes wrong with the responses on a path. Only what is set happens, so a `delay` alone gives the right
/// response late. With `status`, `body` or `bodySize` the response is a canned one and the request
/// changes nothing in the server (no click is counted, no session opened); this also serves any path with a
/// canned response.
///
///     server.setFault({.path = "/ad/req", .status = 500, .body = "<html>", .times = 1});
///     server.setFault({.path = "/campaigns/*.jpg", .cutBodyAfter = 1000});
///     server.setFault({.path = "/old", .status = 302, .headers = {{"Location", "/new"}}});
struct AdServerFault {
    /// A whole path without its query, "*" standing for any run of characters and "?" for one.
    std::string path = {};
    /// Only for this method; empty: for all.
    std::string method = {};

    /// Time from the whole request's arrival to the response's start.
    std::chrono::milliseconds delay{0};
    /// The request is read and logged, and no byte is sent until the server stops or the client goes away.
    bool neverResponds = false;
    /// The connection is closed before the response's head.
    bool drop = false;

    std::optional<int> status = {};
    /// Sent as given, in any encoding.
    std::optional<std::string> body = {};
    /// "application/json" unless said; only for a made-up body.
    std::optional<std::string> contentType = {};
    /// Added to whatever response goes out; one named here replaces its namesake.
    std::map<std::string, std::string> headers = {};
    /// A JSON object of exactly this many bytes (at least 16), generated while it is sent.
    std::optional<std::uint64_t> bodySize = {};

    /// Sends a canned body in chunks, so that no header names its length.
    bool chunked = false;

    /// The head names the whole length; the connection is closed after this many bytes of the body.
    std::optional<std::uint64_t> cutBodyAfter = {};
    /// The response stops after this many bytes of the body, which the client has by then, and goes on
    /// `stallFor` later; never when that is empty. A body that ends there or before does not stop.
    std::optional<std::uint64_t> stallBodyAfter = {};
    std::optional<std::chrono::milliseconds> stallFor = {};
    /// Speed of the whole response, head included; 0: as fast as it goes.
    std::uint64_t bytesPerSecond = 0;

    /// How many requests it applies to before it is removed; 0: all, until it is cleared.
    unsigned times = 0;

    /// The form of campaign files and of the control path: the names above as keys, `delay` and `stallFor` in
    /// seconds, `body` as text or as any other JSON value. Throws std::invalid_argument naming the key and
    /// the reason.
    [[nodiscard]] static AdServerFault fromJSON(const nlohmann::json& value);
    /// The same form; only what is set. A body is given as text.
    [[nodiscard]] nlohmann::json toJSON() const;
};

} // namespace adserver
