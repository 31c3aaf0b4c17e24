#pragma once

#include "Press.h"

#include <Qt>

#include <optional>

namespace virlo
{

/// The remote's button that a key stands for: arrows; Return, Enter, Space, Select, Yes and the gamepads'
/// accepting buttons, which Qt reports as these; Escape, Back, Backspace, No, Cancel and Exit for Menu; media
/// play, pause and their toggle for PlayPause. Nothing for other keys, and none with Control, Alt or Meta
/// held.
[[nodiscard]] std::optional<PressType> pressTypeOfKey(int key, Qt::KeyboardModifiers modifiers);

} // namespace virlo
