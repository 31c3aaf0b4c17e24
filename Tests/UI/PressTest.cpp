#include "ButtonsController.h"
#include "HostWindow.h"
#include "RemoteKeys.h"
#include "Settle.h"
#include "TapRecognizer.h"

#include <gtest/gtest.h>

#include <QKeyEvent>

namespace virlo::test
{

namespace
{

std::string named(const char* what, const std::vector<Press>& presses)
{
    return what + std::to_string(static_cast<int>(presses.front().type));
}

/// Writes down the presses that nobody below it took.
class Listener : public ButtonsController
{
public:
    Listener() : ButtonsController({{"A", {100, 100, 200, 80}}, {"B", {100, 600, 200, 80}}})
    {
        preferred = "A";
    }

    void pressesBegan(const std::vector<Press>& presses) override
    {
        heard.push_back(named("began ", presses));
    }

    void pressesEnded(const std::vector<Press>& presses) override
    {
        heard.push_back(named("ended ", presses));
    }

    void pressesCancelled(const std::vector<Press>& presses) override
    {
        heard.push_back(named("cancelled ", presses));
    }

    std::vector<std::string> heard;
};

using Heard = std::vector<std::string>;

class PressTest : public testing::Test
{
protected:
    void SetUp() override
    {
        screen = ViewController::make<Listener>();
        presentation = window.present(screen);
        screen->button("A")->setPrimaryAction([this] { ++fired; });
    }

    HostWindow window;
    std::shared_ptr<Listener> screen;
    std::shared_ptr<WindowPresentation> presentation;
    int fired = 0;
};

TEST(RemoteKeys, AreTheRemotesButtons)
{
    using enum PressType;
    const std::vector<std::pair<int, std::optional<PressType>>> rows{
        {Qt::Key_Return, Select},        {Qt::Key_Enter, Select},
        {Qt::Key_Space, Select},         {Qt::Key_Select, Select},
        {Qt::Key_Escape, Menu},          {Qt::Key_Back, Menu},
        {Qt::Key_Backspace, Menu},       {Qt::Key_MediaPlay, PlayPause},
        {Qt::Key_MediaPause, PlayPause}, {Qt::Key_MediaTogglePlayPause, PlayPause},
        {Qt::Key_VolumeMute, Mute},      {Qt::Key_A, std::nullopt}};
    for (const auto& [key, type] : rows) {
        EXPECT_EQ(pressTypeOfKey(key, Qt::NoModifier), type) << key;
        EXPECT_EQ(pressTypeOfKey(key, Qt::ControlModifier), std::nullopt) << key;
    }
}

TEST_F(PressTest, SelectFiresTheFocusedControlOnKeyUpAlone)
{
    window.press(Qt::Key_Return);
    EXPECT_TRUE(screen->button("A")->isHighlighted());
    EXPECT_EQ(fired, 0);
    window.release(Qt::Key_Return);
    EXPECT_FALSE(screen->button("A")->isHighlighted());
    EXPECT_EQ(fired, 1);
    EXPECT_TRUE(screen->heard.empty()) << "a control keeps Select to itself";
}

TEST_F(PressTest, AHeldSelectFiresOnceAndAHeldMenuIsOnePress)
{
    window.hold(Qt::Key_Space, 10);
    EXPECT_EQ(fired, 1);
    window.hold(Qt::Key_Escape, 10);
    EXPECT_EQ(screen->heard, (Heard{"began 5", "ended 5"}));
}

TEST_F(PressTest, ARecogniserTakesItsPressTypeFromTheWholeScreen)
{
    int menus = 0;
    const auto recognizer = std::make_shared<TapRecognizer>([&] { ++menus; });
    recognizer->setAllowedPressTypes({PressType::Menu});
    screen->view().addGestureRecognizer(recognizer);
    window.click(Qt::Key_Back);
    window.click(Qt::Key_Return);
    EXPECT_EQ(menus, 1);
    EXPECT_EQ(fired, 1);
    EXPECT_TRUE(screen->heard.empty());

    window.press(Qt::Key_Back);
    screen->view().removeGestureRecognizer(recognizer);
    window.release(Qt::Key_Back);
    EXPECT_EQ(menus, 1) << "taken away during the press";
}

TEST_F(PressTest, APressWhoseViewIsHiddenMeanwhileIsCancelled)
{
    window.press(Qt::Key_Return);
    screen->button("A")->setVisible(false);
    window.release(Qt::Key_Return);
    EXPECT_EQ(fired, 0);
    EXPECT_FALSE(screen->button("A")->isHighlighted());
}

TEST_F(PressTest, APressWhoseViewIsGoneIsCancelledFurtherUp)
{
    auto doomed = std::make_unique<View>(&screen->view());
    doomed->setFrame({800, 600, 100, 100});
    doomed->setFocusable(true);
    screen->button("A")->setFocusable(false);
    screen->button("B")->setFocusable(false);
    ASSERT_TRUE(doomed->isFocused());
    window.press(Qt::Key_Return);
    doomed.reset();
    window.release(Qt::Key_Return);
    EXPECT_EQ(screen->heard, (Heard{"began 4", "cancelled 4"}));
}

TEST_F(PressTest, AWindowThatLosesTheKeysCancels)
{
    window.press(Qt::Key_Return);
    window.press(Qt::Key_Escape);
    QFocusEvent lost(QEvent::FocusOut);
    QCoreApplication::sendEvent(&window, &lost);
    EXPECT_FALSE(screen->button("A")->isHighlighted());
    EXPECT_EQ(screen->heard, (Heard{"began 5", "cancelled 5"}));
    window.release(Qt::Key_Return);
    EXPECT_EQ(fired, 0) << "the late key up belongs to nothing";
}

TEST_F(PressTest, AFocusMoveCancelsAHeldSelectButNotAHeldMenu)
{
    int menus = 0;
    const auto menu = std::make_shared<TapRecognizer>([&] { ++menus; });
    menu->setAllowedPressTypes({PressType::Menu});
    screen->view().addGestureRecognizer(menu);
    window.press(Qt::Key_Escape);
    window.press(Qt::Key_Return);
    window.click(Qt::Key_Down);
    ASSERT_TRUE(screen->button("B")->isFocused());
    EXPECT_FALSE(screen->button("A")->isHighlighted());
    window.release(Qt::Key_Return);
    EXPECT_EQ(fired, 0);
    window.release(Qt::Key_Escape);
    EXPECT_EQ(menus, 1);
}

TEST_F(PressTest, DismissingInsideAPressIsSafe)
{
    screen->button("A")->setPrimaryAction([this] {
        presentation->dismiss();
        screen.reset();
    });
    window.press(Qt::Key_Escape);
    window.click(Qt::Key_Return);
    window.release(Qt::Key_Escape);
    EXPECT_FALSE(presentation->isPresented());
    pumpMainLoop();
}

} // namespace

} // namespace virlo::test
