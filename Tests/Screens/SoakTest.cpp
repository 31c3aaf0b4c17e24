#include "ScreenTest.h"

#include "Application.h"
#include "Footprint.h"
#include "Settle.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOTimerButton.h"

#include <array>
#include <random>

namespace virlo::test
{

namespace
{

Footprint footprint(HostWindow& window, TestClock& clock)
{
    settleAll();
    static_cast<void>(window.picture()); // a frame lets go of what left the scene
    settleAll();
    clock.advance(Seconds(2)); // the last picture's memory waits for another
    settleAll();
    return Footprint::now();
}

class Soak : public ScreenTest
{
protected:
    Soak() { server().setFault({.path = "/pictures/*", .status = 200, .body = m_picture}); }

    void showAndClose()
    {
        const auto screen = ready(ad({}, {}, 1));
        present(screen);
        click(Qt::Key_Escape);
        EXPECT_TRUE(window.left().hasActiveFocus());
    }

    /// Lets pass what a close leaves for later.
    void rest()
    {
        clock.advance(Seconds(31));
        server().clearRequests();
    }

private:
    const std::string m_picture = [] {
        QImage image(1920, 1080, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        return encoded(image, "JPG");
    }();
};

TEST_F(Soak, ManyDifferentAdsLeaveNothingBehind)
{
    const int rounds = soaks() ? 1000 : 100;
    for (int i = 0; i < 30; ++i)
        showAndClose();
    rest();
    const Footprint before = footprint(window, clock);
    for (int i = 0; i < rounds; ++i) {
        showAndClose();
        if (i % 10 == 9)
            rest();
    }
    rest();
    const Footprint after = footprint(window, clock);
    RecordProperty("pss_growth_kib", static_cast<int>(after.kibibytes - before.kibibytes));
    if (Footprint::memoryTells) {
        EXPECT_LT(after.kibibytes - before.kibibytes, 2048);
    }
    EXPECT_LE(after.threads, before.threads + 2);         // workers come and go
    EXPECT_LE(after.descriptors, before.descriptors + 6); // as do kept connections
}

class EverythingOpens : public URLOpener
{
public:
    EverythingOpens() { Application::setURLOpener(this); }

    ~EverythingOpens() override
    {
        settleAll();
        Application::setURLOpener(nullptr);
    }

    bool open(const URL&) override { return true; }
};

TEST_F(Soak, RandomKeysAlwaysLeaveOneFocusedAndMenuAlwaysLeaves)
{
    constexpr std::array keys{Qt::Key_Up,    Qt::Key_Down, Qt::Key_Left,      Qt::Key_Right, Qt::Key_Return,
                              Qt::Key_Space, Qt::Key_A,    Qt::Key_MediaPlay, Qt::Key_Enter, Qt::Key_Tab};
    const EverythingOpens opener;
    std::mt19937 random(19700101);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    const int total = soaks() ? 1'000'000 : 4000;
    for (int done = 0; done < total;) {
        const bool real = upTo(4) == 0; // most actions are unknown ones: they do nothing, and the ad goes on
        const auto screen = ready(ad({},
                                     {{"actionType", real ? "CLICK_TO_APPSTORE" : "CLICK_TO_DANCE"},
                                      {"xPosition", upTo(2200) - 200},
                                      {"yPosition", upTo(1300) - 200}},
                                     upTo(3)));
        present(screen);
        for (int i = 0; i < 500 && done < total && !window.left().hasActiveFocus(); ++i, ++done) {
            const Qt::Key key = keys[static_cast<std::size_t>(upTo(keys.size() - 1))];
            switch (upTo(9)) {
            case 0:
                window.press(key);
                break;
            case 1:
                window.release(key);
                break;
            default:
                window.click(key);
            }
            if (upTo(30) == 0)
                clock.advance(Seconds(upTo(20) * 0.1));
            if (upTo(10) == 0)
                animations.advance(Seconds(upTo(10) * 0.02));
            if (window.left().hasActiveFocus())
                break;
            const std::string focused = focus(screen);
            ASSERT_TRUE(focused == "action" || focused == "close" || focused == "busy")
                << focused << " after " << done << " keys";
        }
        window.click(Qt::Key_Escape);
        ASSERT_TRUE(window.left().hasActiveFocus()) << "after " << done << " keys";
        rest();
    }
}

} // namespace

} // namespace virlo::test
