#pragma once

#include "PassedOver.h"

#include <string_view>
#include <vector>

/// Finds out which ads of a document the merging of wrappers drops, however whole they are.
namespace DroppedAds
{

/// `isBehindWrapper` where a wrapper led to the document. Nothing for a document that cannot be read. Paths
/// count ads from 1.
[[nodiscard]] std::vector<PassedOver::Note> notes(std::string_view document, bool isBehindWrapper);

} // namespace DroppedAds
