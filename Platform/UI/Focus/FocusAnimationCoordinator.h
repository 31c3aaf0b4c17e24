#pragma once

#include "Clock.h"

#include <functional>
#include <vector>

namespace virlo
{

/// Collects the animations that accompany one move of the focus, so that they run together. It exists during
/// the `didUpdateFocus…` calls; main thread.
class FocusAnimationCoordinator
{
public:
    /// How long coordinated animations last.
    static constexpr Seconds duration{0.25};

    /// `animations` runs after every `didUpdateFocus…` has returned; its changes to views (see
    /// `Animation::animate`) are animated over `duration`. `completion`, if any, is called exactly once,
    /// after all coordinated animations have ended or were cut short.
    void addCoordinatedAnimations(std::function<void()> animations, std::function<void()> completion = {});

    /// Runs the collected animations; called once, by the focus engine.
    void run();

private:
    std::vector<std::function<void()>> m_animations;
    std::vector<std::function<void()>> m_completions;
};

} // namespace virlo
