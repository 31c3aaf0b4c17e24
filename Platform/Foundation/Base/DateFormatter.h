#pragma once

#include "Clock.h"

#include <memory>
#include <optional>
#include <string>

namespace virlo
{

/// Dates to and from text by an ICU pattern, strictly: text that does not match the whole pattern is no date.
/// Reads and writes in the device's time zone unless the pattern carries one. Any thread.
class DateFormatter
{
public:
    explicit DateFormatter(std::string format);
    ~DateFormatter();
    DateFormatter(const DateFormatter&) = delete;
    DateFormatter& operator=(const DateFormatter&) = delete;

    [[nodiscard]] const std::string& dateFormat() const noexcept;
    /// An ICU locale name ("en_US_POSIX").
    void setLocale(const std::string& identifier);

    [[nodiscard]] std::optional<Date> dateFromString(const std::string& text) const;
    [[nodiscard]] std::string stringFromDate(Date date) const;

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace virlo
