#include "Button.h"
#include "Exception.h"
#include "HostWindow.h"
#include "Settle.h"
#include "TestAnimations.h"
#include "VIRLOCarousel.h"
#include "ViewController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace virlo::test
{

namespace
{

constexpr double slot = 1440;

VIRLOCarousel::Elements elements(std::size_t count)
{
    VIRLOCarousel::Elements made;
    for (std::size_t i = 0; i < count; ++i) {
        made.push_back(View::make<VIRLOCarouselElement>());
        made.back()->setFrame({0, 0, 1400, 515});
        made.back()->setBackgroundColor(Qt::gray);
    }
    return made;
}

/// A button at the top, a carousel of 1400 × 515 elements below it.
class CarouselController : public ViewController
{
public:
    VIRLOCarousel* carousel = nullptr;
    Button* button = nullptr;

    View* preferredFocusedView() override { return button; }

protected:
    void viewDidLoad() override
    {
        button = new Button(&view());
        button->setFrame({1300, 60, 300, 90});
        carousel = new VIRLOCarousel(&view());
        carousel->setFrame({0, 400, 1920, 640});
        carousel->setHSpacing(40);
        carousel->setFocusMagnification(1.2);
    }
};

class Carousel : public testing::Test
{
protected:
    explicit Carousel(std::size_t count = 5) { show(count); }

    void show(std::size_t count)
    {
        screen->loadViewIfNeeded();
        screen->carousel->setElements(elements(count));
        if (!presentation)
            presentation = window.present(screen);
        animations.advance(Seconds(0.5));
    }

    void click(Qt::Key key, Seconds pause = Seconds(2))
    {
        window.click(key);
        animations.advance(pause);
    }

    /// Slots from the middle, by index.
    [[nodiscard]] std::vector<double> places() const
    {
        std::vector<double> at;
        for (const auto& element : screen->carousel->elements())
            at.push_back((element->x() - 260) / slot);
        return at;
    }

    [[nodiscard]] std::int64_t focused() const
    {
        const auto list = screen->carousel->elements();
        const auto views = focusedViews(screen->view());
        EXPECT_EQ(views.size(), 1U);
        const auto found = std::find_if(list.begin(), list.end(),
                                        [&](const auto& element) { return element.get() == views.front(); });
        return found == list.end() ? -1 : found - list.begin();
    }

    /// What a viewer would call broken: a gap in the strip, two elements in one slot, an element that jumps
    /// while it can be seen.
    void expectAWholeStrip(std::vector<double>& before, double furthest)
    {
        const auto list = screen->carousel->elements();
        std::vector<double> lefts;
        for (std::size_t i = 0; i < list.size(); ++i) {
            const double x = list[i]->x();
            lefts.push_back(x);
            const auto seen = [](double left) { return left < 1920 && left + 1400 > 0; };
            if (!before.empty() && (seen(x) || seen(before[i]))) {
                ASSERT_LT(std::abs(x - before[i]), furthest) << "element " << i << " jumps";
            }
        }
        before = lefts;
        std::sort(lefts.begin(), lefts.end());
        for (std::size_t i = 1; i < lefts.size(); ++i)
            ASSERT_NEAR(lefts[i] - lefts[i - 1], slot, 0.01);
        ASSERT_LE(lefts.front(), 40);
        ASSERT_GE(lefts.back() + 1400, 1880);
    }

    TestAnimations animations;
    HostWindow window;
    std::shared_ptr<CarouselController> screen = ViewController::make<CarouselController>();
    std::shared_ptr<WindowPresentation> presentation;
};

TEST_F(Carousel, PlacesItsElementsAroundTheThird)
{
    const auto frames = [this](std::size_t i) { return screen->carousel->elements()[i]->frame(); };
    EXPECT_EQ(frames(1), QRectF(-1180, 62.5, 1400, 515));
    EXPECT_EQ(frames(2), QRectF(260, 62.5, 1400, 515));
    EXPECT_EQ(frames(3), QRectF(1700, 62.5, 1400, 515));
    EXPECT_EQ(screen->carousel->theMostLeftElement(), screen->carousel->elements()[0].get());
    EXPECT_EQ(screen->carousel->theMostRightElement(), screen->carousel->elements()[4].get());
    show(60);
    EXPECT_EQ(screen->carousel->elements()[59]->x(), 260 + 57 * slot);
}

TEST_F(Carousel, RefusesFewerThanFiveElementsAndKeepsWhatItHad)
{
    try {
        screen->carousel->setElements(elements(4));
        FAIL();
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), Exception::internalInconsistency);
        EXPECT_EQ(exception.reason(), "VIRLOCarousel Minimum expected number of elements is 5. Given 4");
    }
    EXPECT_EQ(screen->carousel->elements().size(), 5U);
}

TEST_F(Carousel, SlidesByOneSlotAndWrapsAround)
{
    click(Qt::Key_Down);
    EXPECT_EQ(places(), (std::vector<double>{-2, -1, 0, 1, 2}));
    click(Qt::Key_Right);
    EXPECT_EQ(screen->carousel->direction(), -1);
    EXPECT_EQ(screen->carousel->focusedElement(), 3);
    EXPECT_EQ(places(), (std::vector<double>{2, -2, -1, 0, 1}));
    click(Qt::Key_Left);
    EXPECT_EQ(screen->carousel->direction(), 1);
    EXPECT_EQ(places(), (std::vector<double>{-2, -1, 0, 1, 2}));
    for (int i = 0; i < 12; ++i)
        click(Qt::Key_Left);
    EXPECT_EQ(focused(), 0);
    EXPECT_EQ(places(), (std::vector<double>{0, 1, 2, -2, -1}));
}

TEST_F(Carousel, OnlyTheFocusedElementIsTallerAndHasAShadow)
{
    const auto look = [this](std::size_t i) {
        const auto element = screen->carousel->elements()[i];
        return std::tuple(element->frame().y(), element->frame().size(), element->shadowColor().alpha());
    };
    const std::tuple normal(62.5, QSizeF(1400, 515), 0);
    const std::tuple lifted(11.0, QSizeF(1400, 618), 255);
    click(Qt::Key_Down);
    EXPECT_EQ(look(2), lifted);
    click(Qt::Key_Right);
    EXPECT_EQ(look(2), normal);
    EXPECT_EQ(look(3), lifted);
    EXPECT_EQ(screen->carousel->elements()[3]->shadowOffset(), QPointF(0, 30));
    click(Qt::Key_Up);
    EXPECT_EQ(look(3), normal);
}

TEST_F(Carousel, TheFocusComesBackToTheElementInTheMiddleAndToNoOther)
{
    // From the button an arrow to the side finds only elements that are out of the middle.
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right}) {
        click(key);
        EXPECT_EQ(focused(), -1);
    }
    click(Qt::Key_Down, Seconds(0.1));
    click(Qt::Key_Right, Seconds(0.1));
    click(Qt::Key_Right, Seconds(0.1));
    click(Qt::Key_Up, Seconds(0.1));
    EXPECT_EQ(focused(), -1);
    EXPECT_TRUE(screen->carousel->shouldElementBeFocused());
    click(Qt::Key_Down);
    EXPECT_EQ(focused(), 4);
    EXPECT_FALSE(screen->carousel->shouldElementBeFocused());
    EXPECT_NEAR(places()[4], 0, 1e-9);
}

struct Keys {
    const char* name;
    std::size_t elements;
    int milliseconds; ///< between two keys
    std::vector<Qt::Key> keys;
};

class FastKeys : public Carousel, public testing::WithParamInterface<Keys>
{
protected:
    FastKeys() : Carousel(GetParam().elements) {}
};

TEST_P(FastKeys, NeverTearTheStrip)
{
    click(Qt::Key_Down);
    std::vector<double> before;
    for (int i = 0; i < 40; ++i) {
        window.click(GetParam().keys[static_cast<std::size_t>(i) % GetParam().keys.size()]);
        for (int passed = 0; passed < GetParam().milliseconds; passed += 10) {
            animations.advance(Seconds(0.01));
            ASSERT_NO_FATAL_FAILURE(expectAWholeStrip(before, slot));
        }
    }
    for (int i = 0; i < 200; ++i) {
        animations.advance(Seconds(0.01));
        ASSERT_NO_FATAL_FAILURE(expectAWholeStrip(before, slot));
    }
    EXPECT_EQ(focused(), screen->carousel->focusedElement());
    EXPECT_NEAR(places()[static_cast<std::size_t>(focused())], 0, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(
    Rhythms, FastKeys,
    testing::Values(Keys{"AHeldKeyOverFive", 5, 30, {Qt::Key_Right}},
                    Keys{"AHeldKeyToTheLeftOverFive", 5, 30, {Qt::Key_Left}},
                    Keys{"AHeldKeyOverSixty", 60, 30, {Qt::Key_Right}},
                    Keys{"FastPressesOverFive", 5, 150, {Qt::Key_Right}},
                    Keys{"ThereAndBackOverSix", 6, 60, {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}},
                    Keys{"InAndOut", 8, 80, {Qt::Key_Left, Qt::Key_Up, Qt::Key_Down}}),
    [](const auto& keys) { return keys.param.name; });

TEST_F(Carousel, CountsEveryPressOfAFastViewer)
{
    show(8);
    click(Qt::Key_Down);
    for (int i = 0; i < 5; ++i)
        click(Qt::Key_Right, Seconds(0.12));
    EXPECT_EQ(screen->carousel->focusedElement(), 7);
    show(5);
    EXPECT_EQ(screen->carousel->focusedElement(), 2) << "the element in the middle has gone";
}

TEST_F(Carousel, ClosesInMidSlide)
{
    click(Qt::Key_Down, Seconds(0.1));
    click(Qt::Key_Right, Seconds(0.2));
    presentation->dismiss();
    screen.reset();
    presentation.reset();
    animations.advance(Seconds(2));
}

} // namespace

} // namespace virlo::test
