#pragma once

namespace virlo
{

class View;

/// The direction of the arrow key; None for a move without one.
enum class FocusHeading { None, Up, Down, Left, Right };

/// One move of the focus. The views exist during the call; either is null where nothing had, or nothing gets,
/// the focus.
struct FocusUpdateContext {
    View* previouslyFocusedView = nullptr;
    View* nextFocusedView = nullptr;
    FocusHeading focusHeading = FocusHeading::None;
};

} // namespace virlo
