#include "DateFormatter.h"

#include "HostTimeZone.h"
#include "PlainDatePattern.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <unicode/udat.h>
#include <unicode/ustring.h>
#include <utility>

namespace virlo
{

namespace
{

std::u16string utf16(const std::string& text)
{
    std::u16string converted(text.size(), u'\0'); // never longer than the bytes
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(converted.data(), static_cast<int32_t>(converted.size()), &length, text.data(),
                         static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
    converted.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return converted;
}

std::string utf8(const std::u16string& text)
{
    std::string converted(text.size() * 3, '\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strToUTF8WithSub(converted.data(), static_cast<int32_t>(converted.size()), &length, text.data(),
                       static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
    converted.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return converted;
}

/// A year beyond what `Date` can hold is as good as its end: "never".
Date dateFromMilliseconds(UDate milliseconds)
{
    constexpr double last = 9.2e12;
    const auto bounded = std::clamp(std::round(milliseconds), -last, last);
    return Date(std::chrono::milliseconds(static_cast<std::int64_t>(bounded)));
}

struct Closer {
    void operator()(UDateFormat* format) const { udat_close(format); }
};

using Opened = std::unique_ptr<UDateFormat, Closer>;

} // namespace

class DateFormatter::Implementation
{
public:
    explicit Implementation(std::string format)
        : m_format(std::move(format))
        , m_plain(PlainDatePattern::compile(m_format))
    {
    }

    [[nodiscard]] const std::string& format() const { return m_format; }

    void setLocale(const std::string& identifier)
    {
        const std::lock_guard lock(m_mutex);
        m_locale = identifier;
        m_opened.reset();
        m_openedForUTC.reset();
    }

    [[nodiscard]] std::optional<Date> parse(const std::string& text)
    {
        // A parser that sees the whole of a hostile body takes its time over white space and digits.
        constexpr std::size_t longest = 256;
        if (text.empty() || text.size() > longest)
            return std::nullopt;
        // White space before a name of a day or month is passed over even by a strict parser.
        if (text[0] <= ' ' && text[0] != m_format[0])
            return std::nullopt;
        const std::lock_guard lock(m_mutex);
        if (m_plain && m_locale == "en_US_POSIX") {
            if (const auto date = m_plain->dateFromString(text))
                return date;
        }
        auto& opened = open(m_opened, hostTimeZone());
        if (!opened)
            return std::nullopt;
        const auto given = utf16(text);
        if (const auto date = parseWhole(opened.get(), given))
            return date;
        // An hour that the device's clocks skip in spring is no time to a strict parser. The text is sound
        // where it is a time in a zone that skips nothing; it then means the moment that a clock not yet put
        // forward would show.
        if (!parseWhole(open(m_openedForUTC, "Etc/UTC").get(), given))
            return std::nullopt;
        udat_setLenient(opened.get(), true);
        const auto date = parseWhole(opened.get(), given);
        makeStrict(opened.get());
        return date;
    }

    [[nodiscard]] std::string write(Date date)
    {
        const auto milliseconds =
            std::chrono::floor<std::chrono::milliseconds>(date.time_since_epoch()).count();
        const std::lock_guard lock(m_mutex);
        const auto& opened = open(m_opened, hostTimeZone());
        if (!opened)
            return {};
        std::u16string text(256, u'\0');
        UErrorCode status = U_ZERO_ERROR;
        const auto length = udat_format(opened.get(), static_cast<UDate>(milliseconds), text.data(),
                                        static_cast<int32_t>(text.size()), nullptr, &status);
        text.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
        return utf8(text);
    }

private:
    /// What the parser says of the text's end is lenient: a literal there may be missing. A character that no
    /// pattern holds, set behind the text, makes it look.
    static std::optional<Date> parseWhole(UDateFormat* format, std::u16string text)
    {
        constexpr char16_t stop = 0xFFFF;
        const auto length = static_cast<int32_t>(text.size());
        text += stop;
        UErrorCode status = U_ZERO_ERROR;
        int32_t position = 0;
        const UDate parsed = udat_parse(format, text.data(), length + 1, &position, &status);
        if (U_FAILURE(status) || position != length || !std::isfinite(parsed))
            return std::nullopt;
        return dateFromMilliseconds(parsed);
    }

    Opened& open(Opened& opened, const std::string& zoneName) const
    {
        if (opened)
            return opened;
        const auto pattern = utf16(m_format);
        const auto zone = utf16(zoneName);
        UErrorCode status = U_ZERO_ERROR;
        opened.reset(udat_open(UDAT_PATTERN, UDAT_PATTERN, m_locale ? m_locale->c_str() : nullptr,
                               zone.data(), static_cast<int32_t>(zone.size()), pattern.data(),
                               static_cast<int32_t>(pattern.size()), &status));
        if (U_FAILURE(status))
            opened.reset();
        else
            makeStrict(opened.get());
        return opened;
    }

    static void makeStrict(UDateFormat* format)
    {
        UErrorCode status = U_ZERO_ERROR;
        udat_setLenient(format, false);
        for (const auto leniency :
             {UDAT_PARSE_ALLOW_WHITESPACE, UDAT_PARSE_ALLOW_NUMERIC, UDAT_PARSE_PARTIAL_LITERAL_MATCH})
            udat_setBooleanAttribute(format, leniency, false, &status);
    }

    const std::string m_format;
    const std::optional<PlainDatePattern> m_plain;
    std::mutex m_mutex; // an opened formatter serves one thread at a time
    std::optional<std::string> m_locale;
    // Opened on first use: their data costs memory.
    Opened m_opened;
    Opened m_openedForUTC;
};

DateFormatter::DateFormatter(std::string format)
    : m_implementation(std::make_unique<Implementation>(std::move(format)))
{
}

DateFormatter::~DateFormatter() = default;

const std::string& DateFormatter::dateFormat() const noexcept
{
    return m_implementation->format();
}

void DateFormatter::setLocale(const std::string& identifier)
{
    m_implementation->setLocale(identifier);
}

std::optional<Date> DateFormatter::dateFromString(const std::string& text) const
{
    return m_implementation->parse(text);
}

std::string DateFormatter::stringFromDate(Date date) const
{
    return m_implementation->write(date);
}

} // namespace virlo
