#include "LayoutConstraint.h"

#include "Animation.h"

#include <QPointer>

#include <utility>

namespace virlo
{

LayoutConstraint::LayoutConstraint(QObject* parent) : QObject(parent) {}

LayoutConstraint::~LayoutConstraint() = default;

void LayoutConstraint::setConstant(double constant)
{
    if (std::exchange(m_constant, constant) != constant)
        move();
}

void LayoutConstraint::setActive(bool active)
{
    if (std::exchange(m_active, active) != active)
        move();
}

void LayoutConstraint::move()
{
    if (const auto running = std::exchange(m_animation, nullptr))
        running->cancel();
    const double target = m_active ? m_constant : 0;
    const Seconds duration = Animation::inheritedDuration();
    if (duration <= Seconds(0)) {
        show(target);
        return;
    }
    m_animation = Animation::run(duration, Animation::Curve::EaseInOut,
                                 [self = QPointer(this), from = m_shown, target](double progress) {
                                     if (self)
                                         self->show(from + (target - from) * progress);
                                 });
}

void LayoutConstraint::show(double constant)
{
    if (std::exchange(m_shown, constant) != constant)
        emit shownConstantChanged();
}

} // namespace virlo
