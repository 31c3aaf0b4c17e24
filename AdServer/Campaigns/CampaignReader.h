#pragma once

#include "Campaign.h"

#include <filesystem>
#include <memory>
#include <string>

namespace adserver
{

/// Reads a campaign file's text and checks every key of it: one that is unknown, of the wrong type or out of
/// its bounds, and a file that is named but not there, makes the whole wrong. Throws std::invalid_argument
/// with the key's path and the reason: "advertisement.ads[0].rating: must be a number from 0 to 5".
[[nodiscard]] std::shared_ptr<const Campaign> readCampaign(const std::string& name, const std::string& text,
                                                           const std::filesystem::path& folder);

} // namespace adserver
