#pragma once

namespace virlo
{

class View;

/// Where an arrow key led; None for a move that no arrow key asked for.
enum class FocusHeading { None, Up, Down, Left, Right };

/// One move of the focus, handed to those who may refuse it and to those who hear of it. The views are alive
/// during the call; either is null where nothing had, or nothing gets, the focus.
struct FocusUpdateContext {
    View* previouslyFocusedView = nullptr;
    View* nextFocusedView = nullptr;
    FocusHeading focusHeading = FocusHeading::None;
};

} // namespace virlo
