#include "DateFormatter.h"

#include "RowName.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <thread>
#include <vector>

namespace virlo::test
{

namespace
{

constexpr const char* sessionFormat = "yyyy-MM-dd'T'HH:mm:ss'.'SSS'Z'";
constexpr const char* advertisementFormat = "E MMM dd HH:mm:ss zzz yyyy";

/// The device's zone, until the end of the test.
class Zone
{
public:
    explicit Zone(const char* name)
    {
        if (const char* const before = std::getenv("TZ"))
            m_before = before;
        setenv("TZ", name, 1);
    }

    ~Zone()
    {
        if (m_before)
            setenv("TZ", m_before->c_str(), 1);
        else
            unsetenv("TZ");
    }

    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

private:
    std::optional<std::string> m_before;
};

std::optional<double> secondsFromText(const char* format, const std::string& text)
{
    DateFormatter formatter(format);
    formatter.setLocale("en_US_POSIX");
    const auto date = formatter.dateFromString(text);
    return date ? std::optional(std::round(Seconds(date->time_since_epoch()).count() * 1000) / 1000)
                : std::nullopt;
}

struct DateRow {
    const char* name;
    const char* zone;
    const char* format;
    std::string text;
    std::optional<double> seconds;
};

std::ostream& operator<<(std::ostream& stream, const DateRow& row)
{
    return stream << row.name;
}

class DateReading : public testing::TestWithParam<DateRow>
{
};

TEST_P(DateReading, IsStrict)
{
    const auto& row = GetParam();
    const Zone zone(row.zone);
    EXPECT_EQ(secondsFromText(row.format, row.text), row.seconds);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DateReading,
    testing::Values(
        DateRow{"ZoneInTheText", "Europe/Berlin", advertisementFormat, "Tue Mar 01 10:20:30 GMT 2016",
                1456827630},
        DateRow{"OtherZoneInTheText", "Europe/Berlin", advertisementFormat, "Tue Mar 01 02:20:30 PST 2016",
                1456827630},
        DateRow{"GermanMonth", "UTC", advertisementFormat, "Di Mai 03 10:20:30 GMT 2016", std::nullopt},
        DateRow{"NoZone", "UTC", advertisementFormat, "Tue Mar 01 10:20:30 2016", std::nullopt},
        DateRow{"DayThatIsNone", "UTC", advertisementFormat, "Tue Mar 32 10:20:30 GMT 2016", std::nullopt},
        DateRow{"TrailingText", "UTC", advertisementFormat, "Tue Mar 01 10:20:30 GMT 2016 ", std::nullopt},
        DateRow{"LeadingSpace", "UTC", advertisementFormat, " Tue Mar 01 10:20:30 GMT 2016", std::nullopt},
        DateRow{"NeverEnding", "UTC", advertisementFormat, "Fri Dec 31 23:59:59 GMT 9999", 9.2e9},
        DateRow{"DeviceZoneInUTC", "UTC", sessionFormat, "2016-03-01T10:20:30.250Z", 1456827630.25},
        DateRow{"DeviceZoneAhead", "Europe/Berlin", sessionFormat, "2016-03-01T10:20:30.250Z", 1456824030.25},
        DateRow{"DeviceZoneInSummer", "Europe/Berlin", sessionFormat, "2016-07-01T10:20:30.250Z",
                1467361230.25},
        DateRow{"DeviceZoneBehind", "America/New_York", sessionFormat, "2016-03-01T10:20:30.000Z",
                1456845630},
        DateRow{"HourThatTheClocksSkip", "Europe/Berlin", sessionFormat, "2016-03-27T02:30:00.000Z",
                1459042200},
        DateRow{"UnknownZone", "Nowhere/Land", sessionFormat, "2016-03-01T10:20:30.250Z", 1456827630.25},
        DateRow{"NoFraction", "UTC", sessionFormat, "2016-03-01T10:20:30Z", std::nullopt},
        DateRow{"NoLiteral", "UTC", sessionFormat, "2016-03-01T10:20:30.250", std::nullopt},
        DateRow{"OffsetForLiteral", "UTC", sessionFormat, "2016-03-01T10:20:30.250+01:00", std::nullopt},
        DateRow{"MonthThatIsNone", "UTC", sessionFormat, "2016-13-01T10:20:30.250Z", std::nullopt},
        DateRow{"FebruaryThirtieth", "UTC", sessionFormat, "2016-02-30T10:20:30.250Z", std::nullopt},
        DateRow{"Empty", "UTC", sessionFormat, "", std::nullopt},
        DateRow{"NotUTF8", "UTC", sessionFormat, "\xff\xfe", std::nullopt},
        DateRow{"Megabyte", "UTC", sessionFormat, std::string(1'000'000, '2'), std::nullopt}),
    rowName);

TEST(DateFormatter, PlainReadingAgreesWithICU)
{
    const std::vector<std::string> days{"2016-01-01", "2016-02-29", "2016-03-27", "2016-07-15", "2016-10-30",
                                        "2016-11-06", "2017-12-31", "1970-01-02", "2199-12-31"};
    for (const char* const name :
         {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe", "Asia/Kolkata", "UTC"}) {
        const Zone zone(name);
        DateFormatter plain(sessionFormat);
        plain.setLocale("en_US_POSIX");
        DateFormatter icu(sessionFormat); // the plain reading is for the fixed locale alone
        icu.setLocale("en_US");
        for (const auto& day : days) {
            for (int minutes = 0; minutes < 24 * 60; minutes += 30) {
                const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
                const auto text = day + "T" + two(minutes / 60) + ":" + two(minutes % 60) + ":59.250Z";
                EXPECT_EQ(plain.dateFromString(text), icu.dateFromString(text)) << name << " " << text;
            }
        }
    }
}

TEST(DateFormatter, WritesWhatItReads)
{
    const Zone zone("Asia/Kolkata");
    DateFormatter formatter(sessionFormat);
    formatter.setLocale("en_US_POSIX");
    const std::string text = "2016-12-31T23:59:59.999Z";
    const auto date = formatter.dateFromString(text);
    ASSERT_TRUE(date);
    EXPECT_EQ(formatter.stringFromDate(*date), text);
    EXPECT_EQ(formatter.stringFromDate(*date + std::chrono::microseconds(999)), text)
        << "rounded up into the next year";
}

TEST(DateFormatter, OneFormatterServesManyThreads)
{
    DateFormatter formatter(advertisementFormat);
    formatter.setLocale("en_US_POSIX");
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&formatter, thread] {
            const auto text = "Tue Mar 0" + std::to_string(thread + 1) + " 10:20:30 GMT 2016";
            const Date expected(std::chrono::seconds(1456827630 + thread * 86400));
            for (int round = 0; round < 200; ++round)
                EXPECT_EQ(formatter.dateFromString(text), expected);
        });
    }
}

TEST(DateFormatterDeathTest, LanguageOfTheDeviceChangesNothing)
{
    testing::FLAGS_gtest_death_test_style =
        "threadsafe"; // a process of its own: the language is looked up once
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    EXPECT_EXIT(
        {
            const auto seconds = secondsFromText(advertisementFormat, "Tue Mar 01 10:20:30 GMT 2016");
            const bool german =
                DateFormatter("MMMM").stringFromDate(Date(std::chrono::seconds(1456827630))) == "März";
            std::_Exit(seconds == 1456827630 && german ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    unsetenv("LC_ALL");
}

} // namespace

} // namespace virlo::test
