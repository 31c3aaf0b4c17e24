#pragma once

#include <string>
#include <string_view>

namespace adserver
{

/// Fit for one segment of a path: everything but letters, digits and "-._~" as %XX.
[[nodiscard]] std::string percentEncoded(const std::string& text);
/// Whether it begins with a scheme.
[[nodiscard]] bool isAbsoluteURL(const std::string& reference);
/// Puts `value` in place of each `placeholder`.
void fillIn(std::string& text, std::string_view placeholder, const std::string& value);
/// As a client at `origin` sees it; names without a slash in front are those of `folder`, which ends with
/// one.
[[nodiscard]] std::string absoluteURL(const std::string& reference, const std::string& origin,
                                      const std::string& folder);

} // namespace adserver
