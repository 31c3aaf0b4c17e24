#include "Animation.h"
#include "ButtonsController.h"
#include "FocusGuide.h"
#include "HostWindow.h"
#include "Settle.h"
#include "TestAnimations.h"

#include <gtest/gtest.h>

namespace virlo::test
{

namespace
{

using testing::Test;

class FocusTest : public Test
{
protected:
    std::shared_ptr<ButtonsController> present(std::vector<ButtonsController::Place> places,
                                               const std::string& preferred = {})
    {
        auto controller = ViewController::make<ButtonsController>(std::move(places));
        controller->preferred = preferred;
        if (const auto before = m_presentation.lock())
            before->dismiss();
        m_presentation = window.present(controller);
        controller->log.clear();
        return controller;
    }

    /// A over B on the left, C on the right of A.
    static std::vector<ButtonsController::Place> corner()
    {
        return {{"A", {100, 100, 200, 80}}, {"B", {100, 600, 200, 80}}, {"C", {900, 100, 200, 80}}};
    }

    HostWindow window;

private:
    std::weak_ptr<WindowPresentation> m_presentation;
};

TEST_F(FocusTest, StartsAtThePreferredViewOrTheFirstInReadingOrder)
{
    EXPECT_EQ(present(corner(), "B")->focused(), "B");
    EXPECT_EQ(present({{"low", {0, 500, 90, 90}}, {"high", {700, 20, 90, 90}}})->focused(), "high");
    EXPECT_TRUE(focusedViews(present({})->view()).empty());
    window.click(Qt::Key_Right); // nothing to move
}

TEST_F(FocusTest, ArrowKeysMoveItAndStopAtTheEdge)
{
    const auto screen = present(corner());
    window.click(Qt::Key_Right);
    EXPECT_EQ(screen->focused(), "C");
    window.click(Qt::Key_Right);
    EXPECT_EQ(screen->focused(), "C");
    window.click(Qt::Key_Left);
    window.click(Qt::Key_Down);
    EXPECT_EQ(screen->focused(), "B");
    EXPECT_EQ(screen->log, (std::vector<std::string>{"A>C", "C>A", "A>B"}));
}

TEST_F(FocusTest, AGuideLeadsToItsView)
{
    // From B nothing lies to the right but the guide's column.
    const auto screen =
        present({{"B", {100, 600, 200, 80}}, {"C", {900, 100, 200, 80}}, {"D", {800, 900, 200, 80}}});
    FocusGuide guide(&screen->view());
    guide.setPosition({900, 0});
    guide.setSize({200, 880});
    guide.setPreferredFocusedView(screen->button("C"));
    screen->button("B")->setFocusable(true);
    screen->preferred = "B";
    screen->setNeedsFocusUpdate();
    screen->updateFocusIfNeeded();

    window.click(Qt::Key_Right);
    EXPECT_EQ(screen->focused(), "C");

    screen->setNeedsFocusUpdate();
    screen->updateFocusIfNeeded();
    screen->button("C")->setFocusable(false);
    window.click(Qt::Key_Right);
    EXPECT_EQ(screen->focused(), "D") << "a guide whose view cannot take the focus must be passed over";
}

TEST_F(FocusTest, ARefusalKeepsTheFocusWhereItIs)
{
    const auto screen = present(corner());
    screen->mayMove = [&](const FocusUpdateContext& context) {
        return context.nextFocusedView != screen->button("C");
    };
    window.click(Qt::Key_Right);
    EXPECT_EQ(screen->focused(), "A");
    screen->preferred = "C";
    screen->setNeedsFocusUpdate();
    screen->updateFocusIfNeeded();
    EXPECT_EQ(screen->focused(), "A");
    window.click(Qt::Key_Down);
    EXPECT_EQ(screen->focused(), "B");
}

struct Loss {
    std::string name;
    std::function<void(ButtonsController&)> lose;
};

class FocusLoss : public FocusTest, public testing::WithParamInterface<Loss>
{
};

TEST_P(FocusLoss, MovesTheFocusAtOnceAndCannotBeRefused)
{
    const auto screen = present(corner(), "A");
    screen->mayMove = [](const FocusUpdateContext&) { return false; };
    GetParam().lose(*screen);
    EXPECT_EQ(screen->focused(), "C") << "without a turn of the loop";
    EXPECT_EQ(focusedViews(screen->view()).size(), 1U);
    window.click(Qt::Key_Left);
    EXPECT_EQ(focusedViews(screen->view()).size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    All, FocusLoss,
    testing::Values(Loss{"Hidden", [](auto& s) { s.button("A")->setVisible(false); }},
                    Loss{"Transparent", [](auto& s) { s.button("A")->setAlpha(0); }},
                    Loss{"Disabled", [](auto& s) { s.button("A")->setEnabled(false); }},
                    Loss{"NotFocusable", [](auto& s) { s.button("A")->setFocusable(false); }},
                    Loss{"Empty", [](auto& s) { s.button("A")->setFrame({}); }},
                    Loss{"Removed", [](auto& s) { s.button("A")->removeFromSuperview(); }},
                    Loss{"UnderAnOverlay",
                         [](auto& s) {
                             auto overlay = View::make<View>();
                             overlay->setFrame({0, 0, 400, 400});
                             s.view().addSubview(overlay);
                             overlay->setObscuresFocus(true);
                         }}),
    [](const auto& row) { return row.param.name; });

TEST_F(FocusTest, ALostContainerIsFollowedByTheInnermostPreference)
{
    const auto screen = present(corner(), "B");
    auto form = ViewController::make<ButtonsController>(std::vector<ButtonsController::Place>{
        {"X", {0, 0, 90, 90}}, {"Y", {0, 200, 90, 90}}, {"Z", {0, 400, 90, 90}}});
    form->preferred = "Z";
    form->view().setFrame({1200, 300, 600, 600});
    screen->addChildViewController(form);
    screen->view().addSubview(form->view());
    window.click(Qt::Key_Right);
    ASSERT_EQ(form->focused(), "Y");
    form->button("Y")->setVisible(false);
    EXPECT_EQ(form->focused(), "Z");
    form->removeFromParentViewController();
    EXPECT_EQ(screen->focused(), "B");
}

/// A strip that takes the focus as a whole and hands it to one of its parts, and is out of the way while a
/// part has it.
class Strip : public View
{
public:
    Strip() { setFrame({600, 500, 900, 200}); }

    [[nodiscard]] bool canBecomeFocused() const override { return true; }

    [[nodiscard]] View* preferredFocusedView() override { return inner; }

    View* inner = nullptr;
};

TEST_F(FocusTest, AContainerPassesTheFocusToItsPreference)
{
    const auto screen = present(corner(), "B");
    auto strip = View::make<Strip>();
    auto first = View::make<Button>();
    auto second = View::make<Button>();
    first->setFrame({0, 0, 100, 100});
    second->setFrame({300, 0, 100, 100});
    strip->addSubview(first);
    strip->addSubview(second);
    strip->inner = second.get();
    screen->view().addSubview(strip);
    window.click(Qt::Key_Right);
    EXPECT_TRUE(second->isFocused());
    window.click(Qt::Key_Left);
    EXPECT_TRUE(first->isFocused()) << "the strip around the focused part is no candidate";
}

TEST_F(FocusTest, CoordinatedAnimationsRunTogetherAndCompleteOnce)
{
    TestAnimations animations;
    const auto screen = present(corner(), "A");
    int completed = 0;
    screen->moved = [&](const FocusUpdateContext& context, FocusAnimationCoordinator& coordinator) {
        View* next = context.nextFocusedView;
        View* previous = context.previouslyFocusedView;
        coordinator.addCoordinatedAnimations(
            [next] { next->setTransform(AffineTransform::scale(1.05, 1.05)); }, [&] { ++completed; });
        coordinator.addCoordinatedAnimations([previous] { previous->setAlpha(0.5); });
        EXPECT_EQ(next->transform(), AffineTransform()) << "not before everybody has been told";
    };
    window.click(Qt::Key_Right);
    View& next = *screen->button("C");
    EXPECT_EQ(next.transform(), AffineTransform::scale(1.05, 1.05));
    EXPECT_DOUBLE_EQ(screen->button("A")->opacity(), 1);
    animations.advance(FocusAnimationCoordinator::duration / 2);
    EXPECT_GT(screen->button("A")->opacity(), 0.5);
    EXPECT_LT(screen->button("A")->opacity(), 1);
    EXPECT_EQ(completed, 0);
    animations.advance(FocusAnimationCoordinator::duration);
    EXPECT_DOUBLE_EQ(screen->button("A")->opacity(), 0.5);
    EXPECT_EQ(completed, 1);
}

} // namespace

} // namespace virlo::test
