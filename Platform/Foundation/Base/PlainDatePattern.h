#pragma once

#include "Clock.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace virlo
{

/// Reads the plain case of the date patterns in use without ICU, whose first date costs four megabytes of
/// resident memory and six milliseconds. A date found is the one that ICU would find; nothing found says
/// nothing, and ICU decides.
///
/// Plain are the fields yyyy, MM, MMM, dd, HH, mm, ss, SSS, E and zzz with every digit there, English names,
/// the zones GMT and UTC or else the device's, and the years 1970 to 2199. A value, usable from any thread.
class PlainDatePattern
{
public:
    /// Nothing where the pattern has any other field.
    [[nodiscard]] static std::optional<PlainDatePattern> compile(std::string_view pattern);

    [[nodiscard]] std::optional<Date> dateFromString(std::string_view text) const;

private:
    enum class Field {
        Literal,
        Year,
        Month,
        MonthName,
        Day,
        Hour,
        Minute,
        Second,
        Millisecond,
        DayName,
        Zone
    };

    struct Piece {
        Field field;
        std::string literal;
    };

    std::vector<Piece> m_pieces;
};

} // namespace virlo
