#pragma once

#include "PassedOver.h"

#include <string_view>
#include <vector>

/// Finds out which ads of a document are dropped when wrappers are merged.
namespace DroppedAds
{

/// `isBehindWrapper`: the document is the target of a wrapper. Empty for a document that cannot be read.
/// Paths count ads from 1.
[[nodiscard]] std::vector<PassedOver::Note> notes(std::string_view document, bool isBehindWrapper);

} // namespace DroppedAds
