#pragma once

#include "Clock.h"
#include "SerialQueue.h"
#include "VIRLOCarouselElement.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace virlo
{
class Animation;
}

/// A strip of at least five elements of one size that goes around without end. The focused element lies in
/// the middle, taller than the others and with a shadow; a move of the focus to a neighbour slides the whole
/// strip by one slot. An element that has slid out of sight on one side comes in again on the other.
///
/// The focus enters it at the element that had it last, and leaves it by any arrow that finds nothing inside.
/// Every element's slot is computed from where the strip is going. Keys faster than the slide speed it up;
/// one that would need elements that are still on the other side is ignored.
///
/// Main thread, but for `elements`.
class VIRLOCarousel : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool empty READ isEmpty NOTIFY elementsChanged FINAL)

public:
    using Elements = std::vector<std::shared_ptr<VIRLOCarouselElement>>;

    static constexpr std::size_t minimumElements = 5;
    static const char* const kCarouselUpdates;

    explicit VIRLOCarousel(QQuickItem* superview = nullptr);
    ~VIRLOCarousel() override;

    /// In the order given, whatever the screen shows. Any thread.
    [[nodiscard]] Elements elements() const;
    /// Takes the place of the elements that were here. Raises an internal inconsistency for fewer than
    /// `minimumElements`, and then keeps what it had.
    void setElements(const Elements& elements);

    [[nodiscard]] bool isEmpty() const { return elements().empty(); }

    /// The normal size of every element: the first one's when `elements` was set.
    [[nodiscard]] QSizeF elementSize() const noexcept { return m_elementSize; }

    /// The gap between neighbours; 100 points at first.
    [[nodiscard]] double hSpacing() const noexcept { return m_hSpacing; }

    void setHSpacing(double spacing);

    /// Only the height of the focused element grows, by this factor: the slots stay equal. 1.1 at first.
    [[nodiscard]] double focusMagnification() const noexcept { return m_focusMagnification; }

    void setFocusMagnification(double factor);

    /// The index in `elements` of the element in the middle; 2 at first.
    [[nodiscard]] std::int64_t focusedElement() const noexcept { return m_focusedElement; }

    /// Of the last move of the focus inside: -1 to the right, +1 to the left, 0 for none.
    [[nodiscard]] std::int64_t direction() const noexcept { return m_direction; }

    [[nodiscard]] bool shouldElementBeFocused() const noexcept { return m_shouldElementBeFocused; }

    /// Gives all elements their normal size, in the middle of the height, and then their x.
    void positionElements();
    /// Puts the focused element into the middle and the others beside it, in order.
    void positionElementsX();
    /// Slides the strip by one slot in `direction`, together with the sizes and shadows.
    void didChangeFocusedElement();

    /// By their x; of two with the same x the earlier one. Null without elements.
    [[nodiscard]] VIRLOCarouselElement* theMostLeftElement() const;
    [[nodiscard]] VIRLOCarouselElement* theMostRightElement() const;
    /// As `direction`, for two views.
    [[nodiscard]] std::int64_t
    determinaDirectionFromFocusedElementAndPreviouslyFocusedElement(virlo::View* focused,
                                                                    virlo::View* previous) const;
    static void addShadow(VIRLOCarouselElement& element);
    static void removeShadow(VIRLOCarouselElement& element);

    /// Not while the focus is inside, and not without elements.
    [[nodiscard]] bool canBecomeFocused() const override;
    /// The element in the middle, where the carousel itself can be focused.
    [[nodiscard]] virlo::View* preferredFocusedView() override;
    [[nodiscard]] bool shouldUpdateFocusInContext(const virlo::FocusUpdateContext& context) override;
    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;

signals:
    void elementsChanged();
    void focusedElementChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    /// Where an element is going.
    struct Place {
        std::int64_t slot = 0; ///< 0 in the middle, negative to the left of it
        double growth = 0;     ///< shown: 0 at the normal height, 1 at the magnified one
        double growthFrom = 0; ///< when its present animation began
    };

    [[nodiscard]] std::int64_t indexOf(const virlo::View* view) const;
    [[nodiscard]] double slotWidth() const;
    void setFocusedElement(std::int64_t index);
    void setShouldElementBeFocused(bool should);
    void slide(virlo::Seconds duration);
    void grow(std::int64_t index, virlo::Seconds duration);
    void wrapAround();
    void layOut();

    mutable virlo::SerialQueue m_updates{kCarouselUpdates};
    Elements m_carouselElements; ///< guarded by `m_updates`
    std::vector<Place> m_places; ///< of the elements, by index
    QSizeF m_elementSize;
    double m_hSpacing = 100;
    double m_focusMagnification = 1.1F;
    std::int64_t m_focusedElement = 2;
    std::int64_t m_direction = 0;
    bool m_shouldElementBeFocused = true;
    bool m_focusIsInside = false;

    double m_behind = 0; ///< slots that the strip as shown is still to the right of where it is going
    double m_speed = 0;  ///< of `m_behind`, in slots a second
    std::shared_ptr<virlo::Animation> m_slide;
    std::shared_ptr<virlo::Animation> m_growth;
};
