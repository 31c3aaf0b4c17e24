#pragma once

#include "Clock.h"

#include <functional>
#include <memory>

namespace virlo
{

/// A timed change, driven by Qt's animation clock; nothing ticks while none runs. Main thread.
///
/// `animate` runs `changes` at once and notes every animatable property that it sets on a View (`frame`,
/// `alpha`, `transform`, `backgroundColor` and the four of the shadow): the view answers the new value from
/// then on and shows the way there. A later change of the same property takes over from where the view
/// stands; with no animation around it, it jumps.
///
/// A completion is called exactly once, with true where everything ran to its end and false where something
/// was cut short: `cancel`, a later change of the same property, the view or the application gone. It is
/// never called inside `animate` or `run`; one for which nothing was left to animate is called after the
/// duration all the same.
class Animation
{
public:
    enum class Curve { EaseInOut, Linear };
    using Completion = std::function<void(bool finished)>;

    /// Changes views' properties over `duration`.
    static std::shared_ptr<Animation> animate(Seconds duration, const std::function<void()>& changes,
                                              Completion completion = {}, Curve curve = Curve::EaseInOut);
    /// Calls `step` with the share done, each frame from 0 to exactly 1.
    static std::shared_ptr<Animation> run(Seconds duration, Curve curve,
                                          std::function<void(double share)> step, Completion completion = {});
    /// The duration of the `animate` whose `changes` is running, zero outside: for animations that take part
    /// in another.
    [[nodiscard]] static Seconds inheritedDuration();

    virtual ~Animation() = default;

    /// Stops where it stands; the completion hears false, on the caller's stack. Nothing once ended. Letting
    /// go of an animation does not stop it.
    virtual void cancel() = 0;
    [[nodiscard]] virtual bool isRunning() const = 0;
};

} // namespace virlo
