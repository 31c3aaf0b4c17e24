#include "Image.h"
#include "ScreenTest.h"
#include "Settle.h"
#include "VIRLOColorSampling.h"
#include "VIRLORoundedCorners.h"

#include <QPainter>

namespace virlo::test
{

namespace
{

using VIRLOColorSampling::colorAtPoint;
using VIRLORoundedCorners::VIRLO_thumbnailWithRoundedCorners;

TEST(RoundedCorners, ShowTheMiddleOfAWideImageInItsOwnPixels)
{
    QImage wide(300, 150, QImage::Format_RGB32);
    for (int y = 0; y < wide.height(); ++y) {
        for (int x = 0; x < wide.width(); ++x)
            wide.setPixelColor(x, y, QColor(x % 256, y, 10));
    }
    const QImage thumbnail = VIRLO_thumbnailWithRoundedCorners(*Image::fromQImage(wide))->qImage();
    ASSERT_EQ(thumbnail.size(), QSize(150, 150));
    for (const QPoint at : {QPoint(75, 75), QPoint(40, 2), QPoint(2, 75), QPoint(147, 75), QPoint(75, 147)})
        EXPECT_EQ(thumbnail.pixelColor(at), wide.pixelColor(at.x() + 75, at.y()));
}

TEST(RoundedCorners, AreClearOfTheOppositeEdgeOfASmallImage)
{
    QImage halves(60, 40, QImage::Format_RGB32);
    halves.fill(Qt::red);
    QPainter(&halves).fillRect(0, 20, 60, 20, Qt::blue);
    const QImage thumbnail = VIRLO_thumbnailWithRoundedCorners(*Image::fromQImage(halves))->qImage();
    EXPECT_EQ(thumbnail.pixelColor(75, 0), QColor(Qt::red));
    EXPECT_EQ(thumbnail.pixelColor(75, 149), QColor(Qt::blue));
}

TEST(RoundedCorners, HaveTheWindowsPixels)
{
    QImage thumbnail(100, 100, QImage::Format_RGB32);
    thumbnail.fill(Qt::green);
    {
        HostWindow window({3840, 2160});
        pumpMainLoop();
        thumbnail = VIRLO_thumbnailWithRoundedCorners(*Image::fromQImage(thumbnail))->qImage();
    }
    pumpMainLoop();
    ASSERT_EQ(thumbnail.size(), QSize(300, 300));
    EXPECT_EQ(qAlpha(thumbnail.pixel(14, 14)), 0);
    EXPECT_EQ(qAlpha(thumbnail.pixel(22, 22)), 255);
}

TEST(RoundedCorners, AverageWhatTheyShrink)
{
    QImage lines(1500, 1500, QImage::Format_RGB32);
    lines.fill(Qt::black);
    QPainter painter(&lines);
    for (int x = 0; x < 1500; x += 2)
        painter.fillRect(x, 0, 1, 1500, Qt::white);
    painter.end();
    const QImage thumbnail = VIRLO_thumbnailWithRoundedCorners(*Image::fromQImage(lines))->qImage();
    for (int x = 40; x < 110; ++x)
        EXPECT_NEAR(thumbnail.pixelColor(x, 75).red(), 128, 6);
}

class Sampling : public testing::Test
{
protected:
    Sampling()
    {
        QImage pixels(4, 3, QImage::Format_ARGB32_Premultiplied);
        pixels.fill(QColor(10, 20, 30));
        pixels.setPixelColor(3, 2, QColor(255, 230, 229));
        pixels.setPixelColor(0, 1, Qt::transparent);
        pixels.setPixelColor(1, 1, QColor(200, 100, 50, 128));
        m_image = Image::fromQImage(pixels);
    }

    std::shared_ptr<const Image> m_image;
};

constexpr Color clearBlack{0, 0, 0, 0};

TEST_F(Sampling, ReadsAPixelWithoutItsPremultiplication)
{
    EXPECT_EQ(colorAtPoint(*m_image, 3, 2), (Color{1.0F, 230 / 255.0F, 229 / 255.0F, 1.0F}));
    const Color half = colorAtPoint(*m_image, 1, 1);
    EXPECT_NEAR(half.red, 200 / 255.0F, 0.01);
    EXPECT_NEAR(half.blue, 50 / 255.0F, 0.01);
    EXPECT_NEAR(half.alpha, 0.5, 0.01);
}

TEST_F(Sampling, GoesOnInTheNextRowBeyondARowsEnd)
{
    EXPECT_EQ(colorAtPoint(*m_image, 7, 1), colorAtPoint(*m_image, 3, 2));
    EXPECT_EQ(colorAtPoint(*m_image, -1, 1), colorAtPoint(*m_image, 3, 0));
}

TEST_F(Sampling, IsTransparentOutsideTheImageAndWhereItIsTransparent)
{
    EXPECT_EQ(colorAtPoint(*m_image, 0, 1), clearBlack);
    EXPECT_EQ(colorAtPoint(*m_image, 75, 906), clearBlack);
    EXPECT_EQ(colorAtPoint(*m_image, 75, -174), clearBlack);
    EXPECT_EQ(colorAtPoint(*m_image, 4, 2), clearBlack);
    EXPECT_EQ(colorAtPoint(*m_image, 1e300, 1e300), clearBlack);
    EXPECT_EQ(colorAtPoint(*m_image, std::nan(""), 1), clearBlack);
}

} // namespace

} // namespace virlo::test
