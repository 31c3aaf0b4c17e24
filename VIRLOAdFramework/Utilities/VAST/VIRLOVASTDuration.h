#pragma once

#include <string_view>

namespace VIRLOVASTDuration
{

/// The seconds of a text such as "00:00:30". Each part between colons is trimmed and read as a decimal number
/// ("15", "15.250", "1,000", "-1") whose fraction is dropped; any other text counts as 0. The first part is
/// hours, the second minutes, the third seconds, a further one is ignored: a bare "30" is 30 hours.
[[nodiscard]] double seconds(std::string_view text);

} // namespace VIRLOVASTDuration
