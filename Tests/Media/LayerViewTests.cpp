#include "PlayerLayerView.h"

#include "HostWindow.h"
#include "MediaTest.h"
#include "RowName.h"
#include "Settle.h"

#include <gtest/gtest.h>

#include <QImage>

#include <array>

namespace virlo::test
{

namespace
{

class LayerView : public MediaTest
{
protected:
    LayerView()
    {
        window.setColor(Qt::darkBlue);
        view->setParentItem(window.contentItem());
        view->setFrame(QRectF(0, 0, 640, 360));
    }

    ~LayerView() override
    {
        view.reset();
        player.reset();
        settleAll();
    }

    void show(const std::shared_ptr<PlayerItem>& item)
    {
        make({item});
        view->setPlayer(player);
        ASSERT_TRUE(settle([&] { return item->isPlaybackLikelyToKeepUp() && !view->videoRect().isEmpty(); }));
    }

    HostWindow window{{640, 360}};
    std::shared_ptr<PlayerLayerView> view = View::make<PlayerLayerView>();
};

struct ColourRow {
    const char* name;
    Clip clip;
};

class Colours : public LayerView, public testing::WithParamInterface<ColourRow>
{
};

void expectColour(const QImage& image, QPoint at, QColor wanted)
{
    const QColor seen = image.pixelColor(at);
    const auto isNear = [](int a, int b) { return std::abs(a - b) <= 6; };
    EXPECT_TRUE(isNear(seen.red(), wanted.red()) && isNear(seen.green(), wanted.green()) &&
                isNear(seen.blue(), wanted.blue()))
        << seen.name().toStdString() << " where " << wanted.name().toStdString() << " belongs, at " << at.x()
        << "," << at.y();
}

TEST_P(Colours, OfTheBarsAreRight)
{
    show(served(GetParam().clip));
    const QImage image = window.image();
    // Each bar is a seventh wide; the upper two thirds carry them.
    const std::array<QColor, 7> bars{QColor(191, 191, 191), QColor(191, 191, 0), QColor(0, 191, 191),
                                     QColor(0, 191, 0),     QColor(191, 0, 191), QColor(191, 0, 0),
                                     QColor(0, 0, 191)};
    for (std::size_t bar = 0; bar < bars.size(); ++bar)
        expectColour(image, QPoint(static_cast<int>(640 * (bar + 0.5) / 7), 100), bars[bar]);
}

INSTANTIATE_TEST_SUITE_P(, Colours,
                         testing::Values(ColourRow{"Bt709",
                                                   {.width = 1280,
                                                    .height = 720,
                                                    .pattern = "smpte75",
                                                    .sound = false,
                                                    .kilobitsPerSecond = 6000,
                                                    .colorimetry = "bt709"}},
                                         ColourRow{"Bt601",
                                                   {.width = 640,
                                                    .height = 360,
                                                    .pattern = "smpte75",
                                                    .sound = false,
                                                    .kilobitsPerSecond = 6000,
                                                    .colorimetry = "bt601"}}),
                         rowName);

TEST_F(LayerView, FitsTheFrameBetweenBarsOfTheBackground)
{
    show(served({.width = 320, .height = 320, .pattern = "red", .sound = false}));
    EXPECT_EQ(view->videoRect(), QRectF(140, 0, 360, 360));
    QImage image = window.image();
    expectColour(image, {320, 180}, Qt::red);
    expectColour(image, {145, 5}, Qt::red);
    expectColour(image, {130, 180}, Qt::darkBlue);
    expectColour(image, {510, 180}, Qt::darkBlue);
    view->setFrame(QRectF(0, 0, 200, 360));
    image = window.image();
    EXPECT_EQ(view->videoRect(), QRectF(0, 80, 200, 200));
    expectColour(image, {100, 90}, Qt::red);
    expectColour(image, {100, 70}, Qt::darkBlue);
    view->setPlayer(nullptr);
    expectColour(window.image(), {100, 180}, Qt::darkBlue);
}

TEST_F(LayerView, KeepsAFrameUntilTheNextItemHasOne)
{
    make({served({.seconds = 0.4, .pattern = "red", .sound = false}),
          served({.seconds = 0.4, .pattern = "blue", .sound = false})});
    view->setPlayer(player);
    ASSERT_TRUE(settle([&] { return !view->videoRect().isEmpty(); }));
    player->play();
    bool sawRed = false;
    bool sawBlue = false;
    ASSERT_TRUE(settle([&] {
        const QColor seen = window.grabWindow().pixelColor(320, 180);
        sawRed = sawRed || seen.red() > 200;
        sawBlue = sawBlue || (seen.blue() > 200 && seen.red() < 50);
        EXPECT_TRUE(seen.red() > 200 || seen.blue() > 200) << seen.name().toStdString();
        return player->currentItem() == nullptr;
    }));
    EXPECT_TRUE(sawRed && sawBlue);
    EXPECT_GT(window.grabWindow().pixelColor(320, 180).blue(), 200);
}

TEST_F(LayerView, ShowsEveryFrameOfAClip)
{
    const auto item =
        served({.seconds = 3, .width = 640, .height = 360, .pattern = "ball", .kilobitsPerSecond = 3000});
    show(item);
    int frames = 0;
    const QObject counting; // ends it with this function: the window lives on
    QObject::connect(&window, &QQuickWindow::frameSwapped, &counting, [&] { ++frames; });
    player->play();
    ASSERT_TRUE(runsOut());
    const auto counts = item->videoFrameCounts();
    RecordProperty("late", static_cast<int>(counts.late));
    RecordProperty("unseen", static_cast<int>(counts.unseen));
    EXPECT_GE(counts.arrived, 88);
    // A machine shared with others may miss a few.
    EXPECT_LE(counts.late + counts.unseen, 5);
    EXPECT_GE(frames, 80);
}

} // namespace

} // namespace virlo::test
