#pragma once

#include "Export.h"
#include "JSON.h"

#include <optional>
#include <string>

namespace virlo
{

/// An expected failure, handed to a completion as a value and never thrown. `code` means what `domain` says.
struct Error {
    std::string domain;
    long code = 0;
    JSON userInfo = JSON::object();

    friend bool operator==(const Error&, const Error&) = default;
};

/// A completion's last argument: nothing means success.
using OptionalError = std::optional<Error>;

/// One line: `Error Domain=… Code=… UserInfo=…`.
[[nodiscard]] VIRLO_EXPORT std::string describe(const Error& error);

} // namespace virlo
