#include "VIRLORoundedCorners.h"

#include "Image.h"
#include "QtWork.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

/// `picture` shrunk to about `size` where it is much larger: the painter's own scaling looks at four pixels
/// only.
QImage nearSize(const QImage& picture, const QSizeF& size)
{
    const QSize wanted(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())));
    if (picture.width() <= wanted.width() || picture.height() <= wanted.height())
        return picture;
    return picture.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

std::shared_ptr<const virlo::Image>
VIRLORoundedCorners::VIRLO_thumbnailWithRoundedCorners(const virlo::Image& image)
{
    const virlo::QtWork work;
    if (!work.mayBegin())
        return nullptr;
    const double side = thumbnailSide;
    const auto scale = static_cast<float>(std::max(side / image.width(), side / image.height()));
    const QSizeF size(image.width() * double{scale}, image.height() * double{scale});
    const QImage picture = nearSize(image.qImage(), size);

    QTransform place;
    place.translate((side - size.width()) * 0.5, (side - size.height()) * 0.5);
    place.scale(size.width() / picture.width(), size.height() / picture.height());
    QBrush brush(picture);
    brush.setTransform(place);

    QImage canvas(thumbnailSide, thumbnailSide, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(canvas.rect(), cornerRadius, cornerRadius);
    painter.end();
    return virlo::Image::fromQImage(std::move(canvas));
}
