#include "Image.h"
#include "LogCapture.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPainter>

#include <fstream>

namespace virlo::test
{

namespace
{

QImage drawing(int width, int height, QImage::Format format)
{
    QImage image(width, height, format);
    image.fill(Qt::red);
    QPainter painter(&image);
    painter.fillRect(0, 0, width / 2, height / 2, Qt::blue);
    return image;
}

std::string encoded(const QImage& image, const char* format)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return data.toStdString();
}

std::string bytes(std::initializer_list<int> values)
{
    return {values.begin(), values.end()};
}

std::string bigEndian(std::uint32_t value, int size)
{
    std::string text;
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift & 0xFF);
    return text;
}

std::string pngHeader(std::uint32_t width, std::uint32_t height)
{
    const std::string chunk = "IHDR" + bigEndian(width, 4) + bigEndian(height, 4) + bytes({8, 6, 0, 0, 0});
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char c : chunk) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xEDB88320U : crc >> 1;
    }
    return bytes({0x89, 'P', 'N', 'G', 13, 10, 26, 10}) + bigEndian(13, 4) + chunk + bigEndian(~crc, 4) +
           bigEndian(1 << 20, 4) + "IDAT";
}

/// Half of the file.
std::string cut(const std::string& whole)
{
    return whole.substr(0, whole.size() / 2);
}

long kilobytesOf(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key))
            return std::stol(line.substr(key.size() + 1));
    }
    return 0;
}

struct Hostile {
    std::string name;
    std::function<std::string()> make;
};

class HostileImage : public testing::TestWithParam<Hostile>
{
};

TEST_P(HostileImage, IsRefused)
{
    allowLog("[Qt]");
    const std::string data = GetParam().make();
    const long before = kilobytesOf("VmPeak:");
    EXPECT_EQ(Image::decode(data), nullptr);
    EXPECT_EQ(Image::decodeCovering(data, 150, 150), nullptr);
    EXPECT_LT(kilobytesOf("VmPeak:") - before, 400L << 10) << "what it claims must not be allocated";
}

const QImage sample = drawing(300, 200, QImage::Format_RGB32);

INSTANTIATE_TEST_SUITE_P(
    Table, HostileImage,
    testing::Values(
        Hostile{"Empty", [] { return std::string(); }},
        Hostile{"Text", [] { return std::string("<html>no image</html>"); }},
        Hostile{"Svg",
                [] { return std::string("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"); }},
        Hostile{"HugePng", [] { return pngHeader(30000, 30000); }},
        Hostile{"PngJustTooLarge", [] { return pngHeader(8192, 4097); }},
        Hostile{"HugeBmp",
                [] {
                    std::string bmp = encoded(sample, "BMP");
                    bmp.replace(18, 8, bytes({0x30, 0x75, 0, 0, 0x30, 0x75, 0, 0}));
                    return bmp;
                }},
        Hostile{"CutPng", [] { return cut(encoded(drawing(300, 200, QImage::Format_ARGB32), "PNG")); }},
        Hostile{"JpegStart",
                [] {
                    return bytes({0xFF, 0xD8, 0xFF});
                }}),
    [](const auto& row) { return row.param.name; });

TEST(Image, WhatTheDecoderMakesOfACutFileIsShown)
{
    allowLog("[Qt]");
    for (const char* format : {"JPEG", "BMP"}) {
        const std::string whole = encoded(drawing(300, 200, QImage::Format_RGB32), format);
        const auto image = Image::decode(whole.substr(0, whole.size() - 2));
        ASSERT_NE(image, nullptr) << format;
        EXPECT_EQ(image->width(), 300);
        EXPECT_GT(image->qImage().pixelColor(20, 20).blue(), 240) << format;
    }
}

struct Good {
    const char* format;
    QImage::Format drawn;
    QImage::Format expected;
};

TEST(Image, DecodesIntoTheFormatsOfTheSceneGraph)
{
    for (const Good& good : {Good{"PNG", QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied},
                             Good{"PNG", QImage::Format_RGB32, QImage::Format_RGB32},
                             Good{"PNG", QImage::Format_Grayscale8, QImage::Format_RGB32},
                             Good{"JPEG", QImage::Format_RGB32, QImage::Format_RGB32},
                             Good{"JPEG", QImage::Format_Grayscale8, QImage::Format_RGB32},
                             Good{"BMP", QImage::Format_RGB32, QImage::Format_RGB32}}) {
        const auto image = Image::decode(
            encoded(drawing(300, 200, QImage::Format_RGB32).convertToFormat(good.drawn), good.format));
        ASSERT_NE(image, nullptr) << good.format;
        EXPECT_EQ(image->width(), 300);
        EXPECT_EQ(image->height(), 200);
        EXPECT_EQ(image->qImage().format(), good.expected) << good.format;
    }
}

TEST(Image, DecodesAtReducedSize)
{
    const std::string jpeg = encoded(drawing(1920, 1080, QImage::Format_RGB32), "JPEG");
    const auto image = Image::decodeCovering(jpeg, 150, 150);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->height(), 150);
    EXPECT_NEAR(image->width(), 267, 1);
    EXPECT_GT(image->qImage().pixelColor(20, 20).blue(), 240);
    EXPECT_GT(image->qImage().pixelColor(200, 120).red(), 240);
    EXPECT_EQ(Image::decodeCovering(jpeg, 4000, 4000)->width(), 1920) << "never larger";
    EXPECT_EQ(Image::decodeCovering(encoded(sample, "PNG"), 30, 30)->width(), 45);
    EXPECT_EQ(Image::decode(jpeg)->covering(960, 540)->qImage().size(), QSize(960, 540));
    EXPECT_EQ(image->covering(960, 540), image);
}

TEST(Image, TurnsAPhotographUpright)
{
    std::string jpeg = encoded(drawing(300, 200, QImage::Format_RGB32), "JPEG");
    // Orientation 6: to be turned a quarter clockwise.
    const std::string tiff = std::string("MM") + bytes({0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3,
                                                        0, 0,  0, 1, 0, 6, 0, 0, 0, 0,    0, 0});
    const std::string exif = std::string("Exif\0\0", 6) + tiff;
    jpeg.insert(2, bytes({0xFF, 0xE1}) + bigEndian(static_cast<std::uint32_t>(exif.size() + 2), 2) + exif);
    const auto whole = Image::decode(jpeg);
    ASSERT_NE(whole, nullptr);
    EXPECT_EQ(QSize(whole->width(), whole->height()), QSize(200, 300));
    const auto small = Image::decodeCovering(jpeg, 100, 120);
    EXPECT_EQ(QSize(small->width(), small->height()), QSize(100, 150));
}

} // namespace

} // namespace virlo::test
