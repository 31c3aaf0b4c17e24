#pragma once

#include "Color.h"

#include <QColor>
#include <QString>
#include <QUrl>

#include <string_view>

namespace virlo
{

class URL;

/// The platform's values as Qt's, and back. Colours are clamped to what QColor holds (0 to 1 in each part).
[[nodiscard]] QColor toQColor(const Color& color);
[[nodiscard]] Color toColor(const QColor& color);
/// From UTF-8; invalid bytes become replacement characters.
[[nodiscard]] QString toQString(std::string_view text);
[[nodiscard]] QUrl toQUrl(const URL& url);

} // namespace virlo
