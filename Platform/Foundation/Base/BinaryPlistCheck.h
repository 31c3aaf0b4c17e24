#pragma once

#include <string_view>

namespace virlo::BinaryPlistCheck
{

/// Whether a binary property list can be handed to a reader that descends into each container and makes every
/// object anew for each reference to it: its tables lie within the data, it is nested at most 32 deep, and it
/// unfolds to at most a million objects. Says nothing about whether its objects are sound.
[[nodiscard]] bool isBearable(std::string_view data);

} // namespace virlo::BinaryPlistCheck
