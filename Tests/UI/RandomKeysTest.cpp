#include "ButtonsController.h"
#include "HostWindow.h"
#include "Settle.h"
#include "TapRecognizer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>

namespace virlo::test
{

namespace
{

/// A share of the soak run's.
int numberOfKeys()
{
    return std::getenv("VIRLO_SOAK") != nullptr ? 1'000'000 : 4000;
}

TEST(RandomKeys, AlwaysLeaveOneFocusedAndMenuAlwaysLeaves)
{
    constexpr std::array keys{Qt::Key_Up,     Qt::Key_Down,  Qt::Key_Left, Qt::Key_Right,
                              Qt::Key_Return, Qt::Key_Space, Qt::Key_A,    Qt::Key_MediaPlay};
    std::mt19937 random(20240611);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    HostWindow window;
    const int total = numberOfKeys();
    for (int done = 0; done < total;) {
        std::vector<ButtonsController::Place> places;
        for (int i = 0; i < 8; ++i)
            places.push_back({std::string(1, static_cast<char>('A' + i)),
                              QRectF(upTo(1700), upTo(900), 20 + upTo(200), 20 + upTo(200))});
        const auto screen = ViewController::make<ButtonsController>(places);
        const auto presentation = window.present(screen);
        const auto menu = std::make_shared<TapRecognizer>([&] { presentation->dismiss(); });
        menu->setAllowedPressTypes({PressType::Menu});
        screen->view().addGestureRecognizer(menu);
        for (int i = 0; i < 400 && done < total; ++i, ++done) {
            const Qt::Key key = keys[static_cast<std::size_t>(upTo(keys.size() - 1))];
            const int manner = upTo(9);
            if (manner == 0)
                window.press(key);
            else if (manner == 1)
                window.release(key);
            else
                window.click(key);
            Button& some = *screen->button(std::string(1, static_cast<char>('A' + upTo(7))));
            if (manner == 2)
                some.setVisible(!some.isVisible());
            else if (manner == 3)
                some.setAlpha(some.alpha() > 0 ? 0 : 1);
            const bool any = [&] {
                for (char name = 'A'; name <= 'H'; ++name) {
                    const Button& button = *screen->button(std::string(1, name));
                    if (button.isVisible() && button.alpha() > 0)
                        return true;
                }
                return false;
            }();
            ASSERT_EQ(focusedViews(screen->view()).size(), any ? 1U : 0U) << "after " << done << " keys";
        }
        ASSERT_TRUE(window.left().keys.empty());
        window.click(Qt::Key_Escape);
        ASSERT_FALSE(presentation->isStanding());
        ASSERT_TRUE(window.left().hasActiveFocus());
        window.left().keys.clear();
        pumpMainLoop();
    }
}

} // namespace

} // namespace virlo::test
