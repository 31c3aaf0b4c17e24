#include "ViewAnimation.h"

#include "LayerItem.h"
#include "MainLoop.h"

#include <QEasingCurve>

#include <algorithm>
#include <cmath>
#include <utility>

namespace virlo
{

namespace
{

std::vector<ViewAnimation*>& collectors()
{
    static std::vector<ViewAnimation*> stack;
    return stack;
}

std::vector<ViewAnimation*>& running()
{
    static std::vector<ViewAnimation*> animations;
    return animations;
}

} // namespace

std::shared_ptr<Animation> Animation::animate(Seconds duration, const std::function<void()>& changes,
                                              Completion completion, Curve curve)
{
    auto animation = ViewAnimation::make(duration, curve, std::move(completion));
    animation->collect(changes);
    animation->begin();
    return animation;
}

std::shared_ptr<Animation> Animation::run(Seconds duration, Curve curve, std::function<void(double)> step,
                                          Completion completion)
{
    auto animation = ViewAnimation::make(duration, curve, std::move(completion));
    animation->setStep(std::move(step));
    animation->begin();
    return animation;
}

Seconds Animation::inheritedDuration()
{
    const ViewAnimation* collecting = ViewAnimation::collecting();
    return collecting != nullptr ? std::chrono::milliseconds(collecting->duration()) : Seconds(0);
}

std::shared_ptr<ViewAnimation> ViewAnimation::make(Seconds duration, Curve curve, Completion completion)
{
    return std::shared_ptr<ViewAnimation>(new ViewAnimation(duration, curve, std::move(completion)));
}

// An animation of no length would end inside `start`, on the caller's stack.
ViewAnimation::ViewAnimation(Seconds duration, Curve curve, Completion completion)
    : m_milliseconds(
          std::max(1, static_cast<int>(std::lround(std::clamp(duration.count(), 0.0, 1e6) * 1000))))
    , m_curve(curve)
    , m_completion(std::move(completion))
{
}

ViewAnimation::~ViewAnimation() = default;

ViewAnimation* ViewAnimation::collecting()
{
    return collectors().empty() ? nullptr : collectors().back();
}

void ViewAnimation::collect(const std::function<void()>& changes)
{
    if (!changes)
        return;
    collectors().push_back(this);
    try {
        changes();
    } catch (...) {
        collectors().pop_back();
        throw;
    }
    collectors().pop_back();
}

void ViewAnimation::begin()
{
    m_self = shared_from_this();
    running().push_back(this);
    start();
}

void ViewAnimation::move(LayerItem& view, AnimatableProperty property, const AnimatableValue& from,
                         const AnimatableValue& to)
{
    for (Track& track : m_tracks) {
        if (track.view == &view && track.property == property) {
            track.to = to;
            return;
        }
    }
    m_tracks.push_back({&view, property, from, to});
}

void ViewAnimation::release(const LayerItem& view, AnimatableProperty property)
{
    const auto isIt = [&](const Track& track) { return track.view == &view && track.property == property; };
    m_tracks.erase(std::remove_if(m_tracks.begin(), m_tracks.end(), isIt), m_tracks.end());
    m_cutShort = true;
    // The caller is changing the property: the completion must not run on its stack.
    if (m_tracks.empty() && m_self)
        MainLoop::shared().post([self = shared_from_this()] { self->cancel(); });
}

void ViewAnimation::cancel()
{
    if (!m_self)
        return;
    m_cutShort = true;
    m_cancelled = true;
    stop();
}

void ViewAnimation::cancelAll()
{
    while (!running().empty())
        running().back()->cancel();
}

bool ViewAnimation::isRunning() const
{
    return m_self != nullptr;
}

double ViewAnimation::progressAt(int milliseconds) const
{
    static const QEasingCurve easing(QEasingCurve::InOutQuad);
    const double linear = std::clamp(milliseconds / static_cast<double>(m_milliseconds), 0.0, 1.0);
    return m_curve == Curve::Linear ? linear : easing.valueForProgress(linear);
}

void ViewAnimation::updateCurrentTime(int milliseconds)
{
    const double done = progressAt(milliseconds);
    // The step and listeners to the view's properties may remove tracks and destroy views.
    const auto tracks = m_tracks;
    for (const Track& track : tracks) {
        const bool stillOurs = std::any_of(m_tracks.begin(), m_tracks.end(), [&](const Track& other) {
            return other.view == track.view && other.property == track.property;
        });
        if (!stillOurs)
            continue;
        AnimatableValue value{};
        for (std::size_t i = 0; i < value.size(); ++i)
            value[i] = done >= 1 ? track.to[i] : track.from[i] + (track.to[i] - track.from[i]) * done;
        track.view->show(track.property, value);
    }
    if (m_step)
        m_step(done);
}

void ViewAnimation::updateState(State now, State)
{
    if (now == Stopped)
        end(!m_cutShort);
}

void ViewAnimation::end(bool finished)
{
    auto self = std::exchange(m_self, nullptr);
    if (!self)
        return;
    running().erase(std::remove(running().begin(), running().end(), this), running().end());
    const auto tracks = std::exchange(m_tracks, {});
    for (const Track& track : tracks)
        track.view->animationEnded(track.property, *this);
    m_step = nullptr;
    auto completion = std::exchange(m_completion, nullptr);
    if (m_cancelled && completion) {
        completion(finished);
        completion = nullptr;
    }
    // Qt is iterating over its list of animations, which a completion may change.
    MainLoop::shared().post([self = std::move(self), completion = std::move(completion), finished] {
        if (completion)
            completion(finished);
    });
}

} // namespace virlo
