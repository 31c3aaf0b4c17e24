#pragma once

namespace virlo
{

/// A button of the remote. The values are part of the interface.
enum class PressType {
    UpArrow = 0,
    DownArrow = 1,
    LeftArrow = 2,
    RightArrow = 3,
    Select = 4,
    Menu = 5,
    PlayPause = 6,
    Mute = 7
};

/// One press of a button, from key down to key up.
struct Press {
    PressType type;

    friend bool operator==(const Press&, const Press&) = default;
};

} // namespace virlo
