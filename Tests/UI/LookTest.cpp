#include "ActivityIndicatorView.h"
#include "Button.h"
#include "HostWindow.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "Settle.h"
#include "TestAnimations.h"
#include "ViewController.h"

#include <gtest/gtest.h>

#include <QPainter>

namespace virlo::test
{

namespace
{

/// Colours as they come out of a image.
int darkness(const QImage& image, int x, int y)
{
    return 255 - image.pixelColor(x, y).green();
}

class LookTest : public testing::Test
{
protected:
    void SetUp() override
    {
        screen->view().setBackgroundColor(Qt::white);
        window.present(screen);
    }

    template <typename T>
    std::shared_ptr<T> add(QRectF frame)
    {
        auto made = View::make<T>();
        made->setFrame(frame);
        screen->view().addSubview(made);
        return made;
    }

    HostWindow window;
    std::shared_ptr<ViewController> screen = ViewController::make<ViewController>();
};

TEST_F(LookTest, AShadowLiesWhereItsOffsetPutsItAndFadesOutwards)
{
    const auto view = add<View>({500, 400, 400, 200});
    view->setBackgroundColor(Qt::red);
    view->setCornerRadius(10);
    EXPECT_EQ(darkness(window.image(), 700, 610), 0) << "none at first";
    view->setShadowRadius(10);
    view->setShadowOpacity(0.4);
    view->setShadowOffset({0, 15});
    const QImage image = window.image();
    EXPECT_GT(darkness(image, 700, 602), 70);
    EXPECT_GT(darkness(image, 700, 602), darkness(image, 700, 615));
    EXPECT_GT(darkness(image, 700, 615), darkness(image, 700, 630));
    EXPECT_EQ(darkness(image, 700, 660), 0);
    EXPECT_LT(darkness(image, 700, 396), darkness(image, 700, 604)) << "moved down, so little of it above";
    EXPECT_EQ(image.pixelColor(700, 500), QColor(Qt::red)) << "under the view, not over it";
    // Stretched between its corners it has no seams.
    for (int x = 560; x < 840; ++x)
        ASSERT_EQ(darkness(image, x, 610), darkness(image, 700, 610)) << "at " << x;
    view->setShadowColor(Qt::transparent);
    EXPECT_EQ(darkness(window.image(), 700, 610), 0);
}

std::shared_ptr<const Image> striped()
{
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::green);
    QPainter painter(&image);
    painter.fillRect(0, 0, 20, 200, Qt::red);
    painter.fillRect(280, 0, 20, 200, Qt::blue);
    return Image::fromQImage(image);
}

struct Mode {
    std::string name;
    ImageView::ContentMode mode;
    QColor left;   ///< at the left edge, half way down
    QColor corner; ///< at the top, in the middle
};

class ImageModes : public LookTest, public testing::WithParamInterface<Mode>
{
};

TEST_P(ImageModes, PlaceTheImage)
{
    const auto view = add<ImageView>({600, 300, 200, 200});
    view->setBackgroundColor(Qt::black);
    view->setImage(striped());
    view->setContentMode(GetParam().mode);
    const QImage image = window.image();
    EXPECT_EQ(image.pixelColor(603, 400), GetParam().left);
    EXPECT_EQ(image.pixelColor(700, 302), GetParam().corner);
    EXPECT_EQ(image.pixelColor(597, 400), QColor(Qt::white)) << "nothing spills";
    EXPECT_EQ(image.pixelColor(803, 400), QColor(Qt::white));
    view->setImage(nullptr);
    EXPECT_EQ(window.image().pixelColor(700, 400), QColor(Qt::black));
}

INSTANTIATE_TEST_SUITE_P(
    All, ImageModes,
    testing::Values(Mode{"Fill", ImageView::ContentMode::Fill, Qt::red, Qt::green},
                    Mode{"AspectFit", ImageView::ContentMode::AspectFit, Qt::red, Qt::black},
                    Mode{"AspectFill", ImageView::ContentMode::AspectFill, Qt::green, Qt::green},
                    Mode{"Center", ImageView::ContentMode::Center, Qt::green, Qt::green}),
    [](const auto& row) { return row.param.name; });

TEST_F(LookTest, AButtonTakesItsTitleForItsAccessibleName)
{
    const auto button = add<Button>({500, 400, 460, 90});
    button->setTitle(" Get it");
    EXPECT_EQ(button->accessibleName(), "Get it");
    button->setTitle(" Get more");
    EXPECT_EQ(button->accessibleName(), "Get more");
    button->setAccessibleName("Install the game");
    button->setTitle("Again");
    EXPECT_EQ(button->accessibleName(), "Install the game");
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(button.get());
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->text(QAccessible::Name), "Install the game");
    EXPECT_EQ(interface->role(), QAccessible::Button);
}

TEST_F(LookTest, MarkupInATextIsShownAsItStands)
{
    const auto label = add<Label>({100, 100, 800, 80});
    label->setText("<img src='http://127.0.0.1/x'><b>bold</b>");
    const double asItStands = label->implicitWidth();
    label->setText("bold");
    EXPECT_GT(asItStands, 3 * label->implicitWidth());
}

TEST_F(LookTest, NothingIsDrawnAtRest)
{
    int frames = 0;
    const auto counting = QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] { ++frames; });
    const auto framesIn = [&](Seconds time) {
        (void)settle([] { return false; }, Seconds(0.1)); // what is on the way
        frames = 0;
        (void)settle([] { return false; }, time);
        return frames;
    };
    add<Button>({500, 400, 460, 90});
    const auto wheel = add<ActivityIndicatorView>({100, 100, 74, 74});
    EXPECT_EQ(framesIn(Seconds(0.3)), 0) << "nothing spins yet";
    wheel->startAnimating();
    EXPECT_GT(framesIn(Seconds(0.5)), 2);
    wheel->setVisible(false);
    EXPECT_EQ(framesIn(Seconds(0.3)), 0) << "hidden";
    wheel->setVisible(true);
    EXPECT_GT(framesIn(Seconds(0.5)), 2);
    wheel->stopAnimating();
    EXPECT_EQ(framesIn(Seconds(0.3)), 0) << "stopped";
    QObject::disconnect(counting);
}

} // namespace

} // namespace virlo::test
