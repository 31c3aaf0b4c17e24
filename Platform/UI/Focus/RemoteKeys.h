#pragma once

#include "Press.h"

#include <Qt>

#include <optional>

namespace virlo
{

/// The remote's button for a key: arrows; Return, Enter, Space, Select, Yes and the gamepads' accepting
/// buttons, which Qt reports as these, for Select; Escape, Back, Backspace, No, Cancel and Exit for Menu;
/// media play, pause and their toggle for PlayPause. None for other keys, and none while Control, Alt or Meta
/// is held.
[[nodiscard]] std::optional<PressType> pressTypeOfKey(int key, Qt::KeyboardModifiers modifiers);

} // namespace virlo
