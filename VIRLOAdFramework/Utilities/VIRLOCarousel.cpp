#include "VIRLOCarousel.h"

#include "Animation.h"
#include "Exception.h"
#include "StringFormat.h"

#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

using virlo::Animation;
using virlo::Seconds;

namespace
{

constexpr double slideFactor = 5; // of the focus coordinator's duration
constexpr Seconds focusDuration{1.0};
/// At rest two elements lie to the left of the middle, all others to the right.
constexpr double leftmostSlot = -2.5;

VIRLOCarouselElement* asElement(virlo::View* view)
{
    return qobject_cast<VIRLOCarouselElement*>(view);
}

void stop(std::shared_ptr<Animation>& animation)
{
    if (const auto running = std::exchange(animation, nullptr))
        running->cancel();
}

} // namespace

const char* const VIRLOCarousel::kCarouselUpdates = "com.virlohq.VIRLOCarouselUpdates";

VIRLOCarousel::VIRLOCarousel(QQuickItem* superview) : View(superview) {}

VIRLOCarousel::~VIRLOCarousel()
{
    stop(m_slide);
    stop(m_growth);
}

VIRLOCarousel::Elements VIRLOCarousel::elements() const
{
    return m_updates.read([this] { return m_carouselElements; });
}

void VIRLOCarousel::setElements(const Elements& elements)
{
    if (elements.size() < minimumElements)
        virlo::raise(virlo::Exception::internalInconsistency,
                     virlo::format("%@ Minimum expected number of elements is 5. Given %lu",
                                   std::string("VIRLOCarousel"), elements.size()));
    Elements before;
    m_updates.sync([&] {
        before = std::exchange(m_carouselElements, elements);
        m_elementSize = elements.front()->frame().size();
    });
    if (m_focusedElement >= static_cast<std::int64_t>(elements.size()))
        m_focusedElement = 2;
    positionElements();
    // Last: where the focus is on one of them, it looks for its successor among the new ones.
    for (const auto& element : before) {
        if (std::find(elements.begin(), elements.end(), element) == elements.end())
            element->removeFromSuperview();
    }
    focusabilityDidChange();
    emit elementsChanged();
}

void VIRLOCarousel::setHSpacing(double spacing)
{
    m_hSpacing = spacing;
    positionElementsX();
}

void VIRLOCarousel::setFocusMagnification(double factor)
{
    m_focusMagnification = factor;
    layOut();
}

// Layout

void VIRLOCarousel::positionElements()
{
    stop(m_growth);
    const Elements elements = this->elements();
    m_places.assign(elements.size(), {});
    for (const auto& element : elements) {
        addSubview(element);
        // An animation of the radius would blur the shadow anew for every frame: it has it from the start.
        addShadow(*element);
        removeShadow(*element);
    }
    positionElementsX();
}

void VIRLOCarousel::positionElementsX()
{
    stop(m_slide);
    m_behind = 0;
    m_speed = 0;
    for (std::size_t i = 0; i < m_places.size(); ++i)
        m_places[i].slot = static_cast<std::int64_t>(i) - m_focusedElement;
    layOut();
}

double VIRLOCarousel::slotWidth() const
{
    return m_elementSize.width() + m_hSpacing;
}

void VIRLOCarousel::layOut()
{
    const Elements elements = this->elements();
    const double middle = (width() - m_elementSize.width()) * 0.5;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Place& place = m_places[i];
        const double h = m_elementSize.height() * (1 + (m_focusMagnification - 1) * place.growth);
        elements[i]->setFrame({middle + (static_cast<double>(place.slot) + m_behind) * slotWidth(),
                               (height() - h) * 0.5, m_elementSize.width(), h});
    }
}

void VIRLOCarousel::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    layOut();
}

/// Moves what the strip needs on the one side over from the other. While the strip is behind, the shown slots
/// reach from the sight to the neighbours of the focused element, which may be out of sight.
void VIRLOCarousel::wrapAround()
{
    const auto count = static_cast<std::int64_t>(m_places.size());
    constexpr double neighbour = 1.25;
    double left = leftmostSlot;
    if (m_behind > 0)
        left = std::max(left, m_behind + neighbour - static_cast<double>(count));
    else
        left = std::min(left, m_behind - neighbour);
    for (Place& place : m_places) {
        while (static_cast<double>(place.slot) + m_behind < left)
            place.slot += count;
        while (static_cast<double>(place.slot) + m_behind >= left + static_cast<double>(count))
            place.slot -= count;
    }
}

VIRLOCarouselElement* VIRLOCarousel::theMostLeftElement() const
{
    const Elements elements = this->elements();
    const auto found = std::min_element(elements.begin(), elements.end(), [](const auto& a, const auto& b) {
        return a->frame().x() < b->frame().x();
    });
    return found != elements.end() ? found->get() : nullptr;
}

VIRLOCarouselElement* VIRLOCarousel::theMostRightElement() const
{
    const Elements elements = this->elements();
    const auto found = std::max_element(elements.begin(), elements.end(), [](const auto& a, const auto& b) {
        return a->frame().x() < b->frame().x();
    });
    return found != elements.end() ? found->get() : nullptr;
}

// Motion

/// The strip sets off as fast as it already moves and comes to rest at its place; the further behind it is,
/// the sooner.
void VIRLOCarousel::slide(Seconds duration)
{
    stop(m_slide);
    // Five presses within a quarter of a second are followed without losing one.
    duration /= std::pow(std::max(1.0, std::abs(m_behind)), 2.5);
    const double from = m_behind;
    const double start = m_speed * duration.count();
    m_slide = Animation::run(
        duration, Animation::Curve::Linear, [carousel = QPointer(this), from, start, duration](double u) {
            if (!carousel)
                return;
            // The cubic with these two ends and speeds, and its slope.
            carousel->m_behind = from * (2 * u * u * u - 3 * u * u + 1) + start * u * (u - 1) * (u - 1);
            carousel->m_speed = (from * 6 * u * (u - 1) + start * (u - 1) * (3 * u - 1)) / duration.count();
            carousel->wrapAround();
            carousel->layOut();
        });
}

/// Lets the element at `index` grow and all others shrink; -1 for none.
void VIRLOCarousel::grow(std::int64_t index, Seconds duration)
{
    stop(m_growth);
    for (Place& place : m_places)
        place.growthFrom = place.growth;
    m_growth = Animation::run(duration, Animation::Curve::EaseInOut,
                              [carousel = QPointer(this), index](double share) {
                                  if (!carousel)
                                      return;
                                  for (std::size_t i = 0; i < carousel->m_places.size(); ++i) {
                                      Place& place = carousel->m_places[i];
                                      const double to = static_cast<std::int64_t>(i) == index ? 1 : 0;
                                      place.growth = place.growthFrom + (to - place.growthFrom) * share;
                                  }
                                  carousel->layOut();
                              });
    const Elements elements = this->elements();
    Animation::animate(duration, [&] {
        for (std::size_t i = 0; i < elements.size(); ++i) {
            if (static_cast<std::int64_t>(i) == index)
                addShadow(*elements[i]);
            else
                removeShadow(*elements[i]);
        }
    });
}

void VIRLOCarousel::didChangeFocusedElement()
{
    setShouldElementBeFocused(true);
    const Seconds duration = Animation::inheritedDuration() * slideFactor;
    for (Place& place : m_places)
        place.slot += m_direction;
    m_behind -= static_cast<double>(m_direction);
    slide(duration);
    grow(m_focusedElement, duration);
}

void VIRLOCarousel::addShadow(VIRLOCarouselElement& element)
{
    element.setShadowColor(Qt::black);
    element.setShadowOpacity(0.5);
    element.setShadowOffset({0, 30});
    element.setShadowRadius(30);
}

void VIRLOCarousel::removeShadow(VIRLOCarouselElement& element)
{
    element.setShadowColor(Qt::transparent);
    element.setShadowOffset({0, 0});
}

// Focus

std::int64_t VIRLOCarousel::indexOf(const virlo::View* view) const
{
    const Elements elements = this->elements();
    const auto found = std::find_if(elements.begin(), elements.end(),
                                    [&](const auto& element) { return element.get() == view; });
    return found != elements.end() ? found - elements.begin() : -1;
}

void VIRLOCarousel::setFocusedElement(std::int64_t index)
{
    if (std::exchange(m_focusedElement, index) != index)
        emit focusedElementChanged();
}

void VIRLOCarousel::setShouldElementBeFocused(bool should)
{
    if (std::exchange(m_shouldElementBeFocused, should) != should)
        focusabilityDidChange();
}

bool VIRLOCarousel::canBecomeFocused() const
{
    return m_shouldElementBeFocused && !m_places.empty();
}

virlo::View* VIRLOCarousel::preferredFocusedView()
{
    const Elements elements = this->elements();
    if (!m_shouldElementBeFocused || elements.empty())
        return nullptr;
    return elements[static_cast<std::size_t>(m_focusedElement)].get();
}

std::int64_t
VIRLOCarousel::determinaDirectionFromFocusedElementAndPreviouslyFocusedElement(virlo::View* focused,
                                                                               virlo::View* previous) const
{
    if (focused == previous || asElement(focused) == nullptr || asElement(previous) == nullptr)
        return 0;
    return focused->frame().x() > previous->frame().x() ? -1 : 1;
}

bool VIRLOCarousel::shouldUpdateFocusInContext(const virlo::FocusUpdateContext& context)
{
    const std::int64_t next = indexOf(context.nextFocusedView);
    if (next < 0)
        return true;
    if (indexOf(context.previouslyFocusedView) < 0)
        return next == m_focusedElement;
    const double inSight = (width() + m_elementSize.width()) * 0.5 / slotWidth();
    const double most = std::max(1.0, static_cast<double>(m_places.size()) - 1 - inSight);
    const auto move = determinaDirectionFromFocusedElementAndPreviouslyFocusedElement(
        context.nextFocusedView, context.previouslyFocusedView);
    return std::abs(m_behind - static_cast<double>(move)) <= most;
}

void VIRLOCarousel::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    View::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    if (context.nextFocusedView == context.previouslyFocusedView)
        return;
    setShouldElementBeFocused(true);
    const std::int64_t next = indexOf(context.nextFocusedView);
    const bool wasInside = std::exchange(m_focusIsInside, next >= 0);
    if (next >= 0) {
        m_direction = determinaDirectionFromFocusedElementAndPreviouslyFocusedElement(
            context.nextFocusedView, context.previouslyFocusedView);
        setFocusedElement(next);
    }
    coordinator.addCoordinatedAnimations(
        [carousel = QPointer(this), next, wasInside] {
            if (!carousel)
                return;
            if (next >= 0 && wasInside)
                carousel->didChangeFocusedElement();
            else if (next >= 0 || wasInside)
                carousel->grow(next, focusDuration);
        },
        // While the focus is inside the carousel itself takes none; when it comes back, it comes by the
        // carousel to the element in the middle.
        [carousel = QPointer(this)] {
            if (carousel)
                carousel->setShouldElementBeFocused(!carousel->m_focusIsInside);
        });
}
