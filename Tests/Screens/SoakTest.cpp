#include "ScreenTest.h"

#include "Footprint.h"
#include "LogCapture.h"
#include "Opener.h"
#include "Settle.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOTimerButton.h"

#include <gmock/gmock.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace virlo::test
{

namespace
{

/// What goes wrong with an ad of the mixed rounds.
struct Trouble {
    const char* name;
    adserver::AdServerFault fault;
    Qt::Key key; ///< the viewer's
};

std::vector<Trouble> troubles()
{
    const auto fault = [](const char* path, int status) {
        return adserver::AdServerFault{.path = path, .status = status, .body = "{}"};
    };
    adserver::AdServerFault dropped = fault("/click/*", 200);
    dropped.drop = true;
    adserver::AdServerFault cut = fault("/images/*", 200);
    cut.body = imageFile(Qt::darkRed);
    cut.cutBodyAfter = 500;
    adserver::AdServerFault slow = fault("/click/*", 200);
    slow.delay = std::chrono::milliseconds(20);
    return {{"none", fault("/none", 200), Qt::Key_Escape},
            {"missing-image", fault("/images/*", 404), Qt::Key_Escape},
            {"no-image", fault("/images/*", 200), Qt::Key_Escape},
            {"cut-image", cut, Qt::Key_Escape},
            {"impression", fault("/impression/*", 500), Qt::Key_Escape},
            {"slow-click", slow, Qt::Key_Return},
            {"dropped-click", dropped, Qt::Key_Return},
            {"store", fault("/store/*", 500), Qt::Key_Return}};
}

class Soak : public ScreenTest
{
protected:
    void serveNormally()
    {
        server().reset();
        for (const char* path : {"/impression/*", "/click/*", "/store/*", "/none"})
            server().setFault({.path = path, .status = 200, .body = "{}"});
        server().setFault({.path = "/images/*", .status = 200, .body = m_image});
    }

    /// One of eight ads of each trouble, so that the stores on disk do not grow.
    void showWith(const Trouble& trouble, int round)
    {
        serveNormally();
        server().setFault(trouble.fault);
        const std::string name = std::string(trouble.name) + '-' + std::to_string(round % 8);
        const auto screen = ready(ad({{"cid", name}, {"backgroundUrl", url("/images/" + name)}}, {}, 1));
        m_shown.emplace_back(trouble.name, screen);
        present(screen);
        click(trouble.key);
        EXPECT_TRUE(settle([&] { return window.left().hasActiveFocus(); })) << name;
    }

    /// Lets the delayed currency checks pass. A weak pointer keeps the memory of its screen: only those to
    /// screens that still exist stay.
    void rest()
    {
        std::erase_if(m_shown, [](const auto& shown) { return shown.second.expired(); });
        clock.advance(Seconds(31));
        server().clearRequests();
    }

    /// The kinds of those that still exist.
    [[nodiscard]] std::vector<std::string> survivors()
    {
        std::vector<std::string> kinds;
        for (const auto& [kind, screen] : m_shown) {
            if (!screen.expired())
                kinds.emplace_back(kind);
        }
        return kinds;
    }

    const Opener opener;

private:
    std::vector<std::pair<const char*, std::weak_ptr<VIRLOAdFullscreenViewController>>> m_shown;
    const std::string m_image = [] {
        QImage image(1920, 1080, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        return encoded(image, "JPG");
    }();
};

TEST_F(Soak, MixedAdsWithFaultsLeaveNothingBehind)
{
    allowLog("[Qt]");
    const auto kinds = troubles();
    std::size_t files = 0;
    const auto show = [&](int count) {
        files = fileCount();
        for (int i = 0; i < count; ++i) {
            showWith(kinds[static_cast<std::size_t>(i) % kinds.size()], i / static_cast<int>(kinds.size()));
            if (i % 10 == 9)
                rest();
        }
        rest();
        settleAll();
        static_cast<void>(window.image()); // a frame releases what left the scene
        settleAll();
    };
    const int rounds = soaks() ? 1000 : 96;
    // A screen takes over 50 KiB, its image 8 MiB. Heap and server, which is in this process, fill ever more
    // slowly: 2 MiB after 100 rounds, 6 after 1,000, 7 after 3,000.
    expectNoGrowth(show, 64, rounds, 4096 + 4 * rounds);
    EXPECT_EQ(fileCount(), files);
    EXPECT_THAT(survivors(), testing::IsEmpty());
}

TEST_F(Soak, RandomKeysAlwaysLeaveOneFocusedAndMenuAlwaysLeaves)
{
    constexpr std::array keys{Qt::Key_Up,    Qt::Key_Down, Qt::Key_Left,      Qt::Key_Right, Qt::Key_Return,
                              Qt::Key_Space, Qt::Key_A,    Qt::Key_MediaPlay, Qt::Key_Enter, Qt::Key_Tab};
    serveNormally();
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
