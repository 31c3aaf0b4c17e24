#pragma once

#include "Animation.h"

#include <QAbstractAnimation>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace virlo
{

class LayerItem;

/// What of a view can be animated, each as up to six numbers that move in a straight line.
enum class AnimatableProperty {
    Frame,
    Alpha,
    Transform,
    BackgroundColor,
    ShadowColor,
    ShadowOffset,
    ShadowOpacity,
    ShadowRadius
};
using AnimatableValue = std::array<double, 6>;

/// The implementation of Animation: keeps itself alive while it runs. Views report changes to animate,
/// changes taken over by others, and their own end.
class ViewAnimation final : public QAbstractAnimation,
                            public Animation,
                            public std::enable_shared_from_this<ViewAnimation>
{
public:
    static std::shared_ptr<ViewAnimation> make(Seconds duration, Curve curve, Completion completion);
    ~ViewAnimation() override;

    /// The one whose `changes` is running, innermost; null outside.
    [[nodiscard]] static ViewAnimation* collecting();
    void collect(const std::function<void()>& changes);

    void setStep(std::function<void(double)> step) { m_step = std::move(step); }

    void begin();

    /// Animates the property to `to`; a second call for the same property changes only its end.
    void move(LayerItem& view, AnimatableProperty property, const AnimatableValue& from,
              const AnimatableValue& to);
    /// Stops animating the property.
    void release(const LayerItem& view, AnimatableProperty property);

    /// For the application's end.
    static void cancelAll();

    void cancel() override;
    [[nodiscard]] bool isRunning() const override;

    [[nodiscard]] int duration() const override { return m_milliseconds; }

protected:
    void updateCurrentTime(int milliseconds) override;
    void updateState(State now, State before) override;

private:
    struct Track {
        LayerItem* view;
        AnimatableProperty property;
        AnimatableValue from;
        AnimatableValue to;
    };

    ViewAnimation(Seconds duration, Curve curve, Completion completion);
    [[nodiscard]] double progressAt(int milliseconds) const;
    void end(bool finished);

    int m_milliseconds;
    Curve m_curve;
    Completion m_completion;
    std::function<void(double)> m_step;
    std::vector<Track> m_tracks;
    bool m_cutShort = false;
    bool m_cancelled = false;
    std::shared_ptr<ViewAnimation> m_self;
};

} // namespace virlo
