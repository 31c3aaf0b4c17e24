#pragma once

#include "Export.h"
#include "JSON.h"

#include <optional>
#include <string>

namespace virlo
{

/// An expected failure, passed to a completion as a value and never thrown. `domain` gives `code` its
/// meaning.
struct Error {
    std::string domain;
    long code = 0;
    JSON userInfo = JSON::object();

    friend bool operator==(const Error&, const Error&) = default;
};

/// The last argument of a completion; nothing means success.
using OptionalError = std::optional<Error>;

/// One line: `Error Domain=… Code=… UserInfo=…`.
[[nodiscard]] VIRLO_EXPORT std::string describe(const Error& error);

} // namespace virlo
