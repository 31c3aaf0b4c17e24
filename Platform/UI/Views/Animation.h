#pragma once

#include "Clock.h"

#include <functional>
#include <memory>

namespace virlo
{

/// A timed change, driven by Qt's animation clock; nothing ticks while none runs. Main thread.
///
/// `animate` runs `changes` at once and notes every animatable property that it sets on a View (`frame`,
/// `alpha`, `transform`, `backgroundColor` and the four of the shadow): the view returns the new value from
/// then on and moves towards it. A later change of the same property continues from the value shown; outside
/// of an animation it takes effect at once.
///
/// A completion is called exactly once, with true where everything ran to its end and false where something
/// was cut short: by `cancel`, a later change of the same property, the end of the view or of the
/// application. It is never called inside `animate` or `run`; where nothing is left to animate, it is still
/// called after the duration.
class Animation
{
public:
    enum class Curve { EaseInOut, Linear };
    using Completion = std::function<void(bool finished)>;

    /// Changes views' properties over `duration`.
    static std::shared_ptr<Animation> animate(Seconds duration, const std::function<void()>& changes,
                                              Completion completion = {}, Curve curve = Curve::EaseInOut);
    /// Calls `step` with the progress, each frame from 0 to exactly 1.
    static std::shared_ptr<Animation>
    run(Seconds duration, Curve curve, std::function<void(double progress)> step, Completion completion = {});
    /// The duration of the `animate` whose `changes` is running, zero outside: for animations that are part
    /// of another.
    [[nodiscard]] static Seconds inheritedDuration();

    virtual ~Animation() = default;

    /// Stops at the value shown; the completion is called with false, on the caller's stack. Nothing once
    /// ended. Releasing an animation does not stop it.
    virtual void cancel() = 0;
    [[nodiscard]] virtual bool isRunning() const = 0;
};

} // namespace virlo
