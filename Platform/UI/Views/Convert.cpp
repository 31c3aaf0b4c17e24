#include "Convert.h"

#include "URL.h"

#include <algorithm>

namespace virlo
{

QColor toQColor(const Color& color)
{
    const auto part = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
    return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.alpha));
}

Color toColor(const QColor& color)
{
    const QColor rgb = color.toRgb();
    return {rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF()};
}

QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QUrl toQUrl(const URL& url)
{
    return QUrl(toQString(url.absoluteString()));
}

} // namespace virlo
