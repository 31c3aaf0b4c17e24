#include "VIRLORoundedCorners.h"

#include "Image.h"
#include "MainScreen.h"
#include "QtWork.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

int VIRLORoundedCorners::thumbnailPixels()
{
    return static_cast<int>(std::lround(thumbnailSide * virlo::MainScreen::scale()));
}

std::shared_ptr<const virlo::Image>
VIRLORoundedCorners::VIRLO_thumbnailWithRoundedCorners(const virlo::Image& image)
{
    const virlo::QtWork work;
    if (!work.mayBegin())
        return nullptr;
    const int side = thumbnailPixels();
    const auto scale =
        static_cast<float>(std::max(side / double(image.width()), side / double(image.height())));
    // Scaled as a whole first: the painter's own scaling samples four pixels only.
    const auto scaledSide = [&](int length) {
        return std::max(side, static_cast<int>(std::lround(length * double{scale})));
    };
    const QImage filling = image.qImage().scaled(scaledSide(image.width()), scaledSide(image.height()),
                                                 Qt::IgnoreAspectRatio, Qt::SmoothTransformation);

    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    const double radius = cornerRadius * side / thumbnailSide;
    painter.drawRoundedRect(canvas.rect(), radius, radius);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.drawImage(QPointF((side - filling.width()) * 0.5, (side - filling.height()) * 0.5), filling);
    painter.end();
    return virlo::Image::fromQImage(std::move(canvas));
}
