#include "RemoteKeys.h"

namespace virlo
{

std::optional<PressType> pressTypeOfKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return std::nullopt;
    switch (key) {
    case Qt::Key_Up:
        return PressType::UpArrow;
    case Qt::Key_Down:
        return PressType::DownArrow;
    case Qt::Key_Left:
        return PressType::LeftArrow;
    case Qt::Key_Right:
        return PressType::RightArrow;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
    case Qt::Key_Select:
    case Qt::Key_Yes:
        return PressType::Select;
    case Qt::Key_Escape:
    case Qt::Key_Back:
    case Qt::Key_Backspace:
    case Qt::Key_No:
    case Qt::Key_Cancel:
    case Qt::Key_Exit:
        return PressType::Menu;
    case Qt::Key_MediaPlay:
    case Qt::Key_MediaPause:
    case Qt::Key_MediaTogglePlayPause:
    case Qt::Key_Play:
        return PressType::PlayPause;
    case Qt::Key_VolumeMute:
        return PressType::Mute;
    default:
        return std::nullopt;
    }
}

} // namespace virlo
