#include "ScreenTest.h"

#include "AdServer.h"
#include "Button.h"
#include "Convert.h"
#include "Image.h"
#include "ImageView.h"
#include "LayoutConstraint.h"
#include "Settle.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOFrameworkImages.h"
#include "VIRLOTimerButton.h"

#include <cmath>

namespace virlo::test
{

namespace
{

constexpr QRect middleOfRing(75 + 24, 906 + 24, 51, 51);

double luminance(const QColor& color)
{
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The contrast between the lightest and the darkest pixel.
double contrast(const QImage& image, const QRect& area)
{
    double lightest = 0;
    double darkest = 1;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            lightest = std::max(lightest, luminance(image.pixelColor(x, y)));
            darkest = std::min(darkest, luminance(image.pixelColor(x, y)));
        }
    }
    return (lightest + 0.05) / (darkest + 0.05);
}

/// How many pixels differ by a contrast of at least 3.
int strikingDifferences(const QImage& one, const QImage& other)
{
    int count = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            if (a == b)
                continue;
            const double light = luminance(QColor(a));
            const double dark = luminance(QColor(b));
            count += (std::max(light, dark) + 0.05) / (std::min(light, dark) + 0.05) >= 3 ? 1 : 0;
        }
    }
    return count;
}

JSON colored(const QColor& color)
{
    return {{"backgroundRed", color.red()},   {"backgroundGreen", color.green()},
            {"backgroundBlue", color.blue()}, {"textRed", color.red()},
            {"textGreen", color.green()},     {"textBlue", color.blue()}};
}

struct Ground {
    const char* name;
    QColor color;
};

class OnImage : public ScreenTest, public testing::WithParamInterface<Ground>
{
};

TEST_P(OnImage, TheCountCanBeReadAndTheFocusCannotBeMissed)
{
    // The worst that a server can send: a button in the image's own colour.
    const auto screen = readyOver(GetParam().color, ad({}, colored(GetParam().color), 3));
    present(screen);
    clock.advance(Seconds(1));
    const std::string name = GetParam().name;
    const QImage counting = shoot("counting-on-" + name);
    EXPECT_GE(contrast(counting, middleOfRing), 4.5);
    countDown(2);
    EXPECT_EQ(focus(screen), "action");
    const QImage onAction = shoot("action-focused-on-" + name);
    EXPECT_GE(contrast(onAction, middleOfRing), 4.5);
    click(Qt::Key_Left);
    ASSERT_EQ(focus(screen), "close");
    const QImage onClose = shoot("close-focused-on-" + name);
    const QRect action(1280, 800, 600, 200);
    const QRect close(0, 830, 250, 250);
    EXPECT_GE(strikingDifferences(onAction.copy(action), onClose.copy(action)), 3000);
    EXPECT_GE(strikingDifferences(onAction.copy(close), onClose.copy(close)), 2000);
}

INSTANTIATE_TEST_SUITE_P(All, OnImage,
                         testing::Values(Ground{"White", QColor(255, 255, 255)},
                                         Ground{"LightGrey", QColor(215, 215, 215)},
                                         Ground{"Grey", QColor(128, 128, 128)},
                                         Ground{"Blue", QColor(40, 60, 110)},
                                         Ground{"Black", QColor(0, 0, 0)}),
                         [](const auto& row) { return row.param.name; });

class FullscreenLook : public ScreenTest
{
protected:
    /// The shape of what the close button shows, whatever its size.
    static bool shows(const VIRLOTimerButton& button, const char* image)
    {
        return button.image() && button.image() == VIRLOFrameworkImages::imageNamed(image);
    }
};

TEST_F(FullscreenLook, ALightCornerTurnsTheCloseButtonDark)
{
    const auto light = readyOver(QColor(230, 230, 230), ad());
    EXPECT_TRUE(shows(closeButton(light), "fullscreen_close_dark.png"));
    EXPECT_LT(closeButton(light).progressTintColor().lightness(), 100);

    const auto pink = readyOver(QColor(242, 227, 242), ad());
    EXPECT_TRUE(shows(closeButton(pink), "fullscreen_close.png"));
    EXPECT_EQ(closeButton(pink).progressTintColor(), QColor(Qt::white));
}

TEST_F(FullscreenLook, TheCornerIsSampledInTheOriginalsPixels)
{
    for (const QSize size : {QSize(1920, 1080), QSize(3840, 2160)}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::black);
        image.setPixelColor(75, 906, Qt::white);
        const JSON one = ad();
        serve("/images/" + identifier(), encoded(image));
        const auto screen = ready(one);
        EXPECT_TRUE(shows(closeButton(screen), "fullscreen_close_dark.png")) << size.width();
        EXPECT_EQ(backgroundImage(screen).image()->width(), 1920) << "the window's own pixels";
    }
}

TEST_F(FullscreenLook, ALargeImageHasItsFullResolutionInALargeWindow)
{
    window.resize(3840, 2160);
    pumpMainLoop();
    QImage lines(3840, 2160, QImage::Format_RGB32);
    for (int x = 0; x < lines.width(); ++x) {
        for (int y = 0; y < lines.height(); ++y)
            lines.setPixel(x, y, x % 2 == 0 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    }
    const JSON one = ad();
    serve("/images/" + identifier(), encoded(lines));
    present(ready(one));
    const QImage shown = shoot("full-resolution");
    EXPECT_EQ(shown.pixelColor(2000, 700), QColor(Qt::white));
    EXPECT_EQ(shown.pixelColor(2001, 700), QColor(Qt::black));
}

struct Placed {
    const char* name;
    double x;
    double y;
    const char* text;
};

class ActionButtonPlace : public ScreenTest, public testing::WithParamInterface<Placed>
{
};

TEST_P(ActionButtonPlace, StaysOnTheCanvasAndHoldsItsTitle)
{
    const Placed& placed = GetParam();
    const auto screen = readyOver(
        Qt::darkBlue, ad({}, {{"xPosition", placed.x}, {"yPosition", placed.y}, {"text", placed.text}}));
    const QRectF frame = actionButton(screen).frame();
    EXPECT_TRUE(QRectF(60, 60, 1800, 960).contains(frame))
        << frame.x() << ' ' << frame.y() << ' ' << frame.width();
    EXPECT_GE(frame.width(), 420);
    EXPECT_GE(actionButton(screen).fontSize(), 36);
    if (QRectF(60, 60, 1380, 864).contains(placed.x, placed.y)) {
        EXPECT_EQ(frame.topLeft(), QPointF(placed.x, placed.y));
    }
    const auto* left = screen->view().property("actionButtonPositionX").value<LayoutConstraint*>();
    EXPECT_EQ(left->constant(), static_cast<double>(static_cast<float>(placed.x)));
    present(screen);
    shoot(std::string("button-") + placed.name);
}

INSTANTIATE_TEST_SUITE_P(
    All, ActionButtonPlace,
    testing::Values(Placed{"AsSent", 1300, 840, "Play"}, Placed{"TopLeft", 0, 0, "Play"},
                    Placed{"FarOut", 1e9, -1e9, "Play"}, Placed{"BottomRight", 1919, 1079, "Play"},
                    Placed{"Long", 1500, 500, "Start your free seven day trial of everything"},
                    Placed{
                        "Endless", 60, 500,
                        "One title after another and another and another and another and another and another "
                        "and another and another and another and another and another"},
                    Placed{"Mute", 200, 200, ""}),
    [](const auto& row) { return row.param.name; });

struct Kind {
    const char* name;
    const char* actionType;
    const char* icon;
};

class ActionButtonIcon : public ScreenTest, public testing::WithParamInterface<Kind>
{
};

TEST_P(ActionButtonIcon, ShowsWhatPressingDoes)
{
    const auto screen = readyOver(Qt::darkBlue, ad({}, {{"actionType", GetParam().actionType}}));
    const Button& button = actionButton(screen);
    EXPECT_EQ(button.title(), " Play now");
    EXPECT_EQ(button.accessibleName(), "Play now");
    EXPECT_EQ(button.cornerRadius(), 10);
    EXPECT_EQ(button.backgroundColor(), QColor(200, 60, 30));
    const auto shape =
        GetParam().icon != nullptr ? VIRLOFrameworkImages::imageNamed(GetParam().icon) : nullptr;
    ASSERT_EQ(button.icon() != nullptr, shape != nullptr);
    if (shape) {
        EXPECT_EQ(button.icon()->qImage(), shape->qImage()); // white, as the title
    }
    present(screen);
    shoot(std::string("icon-") + GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(All, ActionButtonIcon,
                         testing::Values(Kind{"Email", "CLICK_TO_EMAIL", "icon_email.png"},
                                         Kind{"Call", "CLICK_TO_CALL", "icon_phone.png"},
                                         Kind{"Text", "CLICK_TO_SMS", "icon_sms.png"},
                                         Kind{"Content", "CLICK_TO_CONTENT", nullptr},
                                         Kind{"Unknown", "CLICK_TO_DANCE", nullptr}),
                         [](const auto& row) { return row.param.name; });

TEST_F(FullscreenLook, ShowsAWheelUntilALateImageComes)
{
    const JSON one = ad();
    server().setFault({.path = "/images/*", .status = 404, .body = "gone"});
    const auto screen = ready(one);
    EXPECT_EQ(requests("/images/" + identifier()), 1);
    EXPECT_FALSE(isSpinning(screen));

    server().setFault({.path = "/images/*",
                       .delay = std::chrono::milliseconds(200),
                       .status = 200,
                       .body = imageFile(Qt::white)});
    present(screen);
    EXPECT_TRUE(isSpinning(screen));
    shoot("image-missing");
    ASSERT_TRUE(settle([&] { return backgroundImage(screen).hasImage(); }));
    EXPECT_FALSE(isSpinning(screen));
    EXPECT_EQ(requests("/images/" + identifier()), 2);
    // A late image is not sampled: the close button keeps its appearance on a light one.
    EXPECT_TRUE(shows(closeButton(screen), "fullscreen_close.png"));
    EXPECT_EQ(shoot("image-late").pixelColor(960, 300), QColor(Qt::white));
}

} // namespace

} // namespace virlo::test
