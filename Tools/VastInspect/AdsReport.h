#pragma once

#include "Error.h"
#include "VIRLOVASTXMLParser.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

/// The records of a VAST document as JSON, with the keys in reading order. Absent values are null.
namespace AdsReport
{

using JSON = nlohmann::ordered_json;

[[nodiscard]] JSON ads(const std::optional<VIRLOVASTXMLParser::Advertisements>& ads);
[[nodiscard]] JSON error(const virlo::OptionalError& error);

} // namespace AdsReport
