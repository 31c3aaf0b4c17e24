#pragma once

#include "Convert.h"

#include <QString>

#include <optional>
#include <string>

/// The server's texts as screens show them.
namespace VIRLOScreenText
{
/// On one line, whatever the server sent; empty for nothing.
inline QString line(const std::optional<std::string>& text)
{
    return virlo::toQString(text.value_or("")).simplified();
}

/// "first | second"; what the server left out leaves no separator behind.
inline QString joined(const QString& first, const QString& second)
{
    return first.isEmpty() || second.isEmpty() ? first + second : first + QStringLiteral(" | ") + second;
}
} // namespace VIRLOScreenText
