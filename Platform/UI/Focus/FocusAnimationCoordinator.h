#pragma once

#include "Clock.h"

#include <functional>
#include <vector>

namespace virlo
{

/// Collects the animations of everybody concerned by one move of the focus, so that they run together. It
/// lives for the length of the `didUpdateFocus…` calls; main thread.
class FocusAnimationCoordinator
{
public:
    /// How long coordinated animations last.
    static constexpr Seconds duration{0.25};

    /// `animations` runs after every `didUpdateFocus…` has returned; what it changes of views (see
    /// `Animation::animate`) moves to its new value over `duration`. `completion`, if any, is called exactly
    /// once, after all coordinated animations have ended, whether they ran out or were cut short.
    void addCoordinatedAnimations(std::function<void()> animations, std::function<void()> completion = {});

    /// Runs what was collected; called once, by the focus engine.
    void run();

private:
    std::vector<std::function<void()>> m_animations;
    std::vector<std::function<void()>> m_completions;
};

} // namespace virlo
