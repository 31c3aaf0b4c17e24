#include "TestImages.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>

#include <malloc.h>

std::string adImage(int number)
{
    QRandomGenerator random(static_cast<quint32>(number) + 1);
    QImage image(1920, 1080, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 400, 1080);
    sky.setColorAt(0, QColor::fromHsv(random.bounded(360), 180, 90));
    sky.setColorAt(1, QColor::fromHsv(random.bounded(360), 160, 220));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    for (int shape = 0; shape < 400; ++shape) {
        painter.setBrush(QColor::fromHsv(random.bounded(360), random.bounded(256), random.bounded(256), 60));
        painter.drawEllipse(QPoint(random.bounded(1920), random.bounded(1080)), random.bounded(8, 120),
                            random.bounded(8, 120));
    }
    painter.setBrush(QColor(20, 20, 40));
    QPainterPath ridge(QPointF(0, 1080));
    for (int x = 0; x <= 1920; x += 40)
        ridge.lineTo(x, 800 - random.bounded(200));
    ridge.lineTo(1920, 1080);
    painter.drawPath(ridge);
    painter.end();

    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "JPEG", 85);
    return bytes.toStdString();
}

void takeFreshMemory()
{
    constexpr int glibcDefault = 128 * 1024; // setting it ends its growing with each block that is freed
    mallopt(M_MMAP_THRESHOLD, glibcDefault);
}
