#include "DateFormatter.h"

#include "RowName.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

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

struct DateRow {
    const char* name;
    const char* zone;
    const char* format;
    std::string text;
    std::optional<double> seconds;
};

class DateReading : public testing::TestWithParam<DateRow>
{
};

TEST_P(DateReading, IsStrict)
{
    const auto& row = GetParam();
    const Zone zone(row.zone);
    const auto date = DateFormatter(row.format).dateFromString(row.text);
    ASSERT_EQ(date.has_value(), row.seconds.has_value());
    EXPECT_DOUBLE_EQ(Seconds(date.value_or(Date()).time_since_epoch()).count(), row.seconds.value_or(0));
}

INSTANTIATE_TEST_SUITE_P(
    Table, DateReading,
    testing::Values(
        DateRow{"ZoneInTheText", "Europe/Berlin", advertisementFormat, "Tue Mar 01 10:20:30 GMT 2016",
                1456827630},
        DateRow{"OtherZoneInTheText", "Europe/Berlin", advertisementFormat, "Tue Mar 01 02:20:30 PST 2016",
                1456827630},
        DateRow{"Summer", "UTC", advertisementFormat, "Fri Jul 01 10:20:30 CEST 2016", 1467361230},
        DateRow{"ShortOffset", "UTC", advertisementFormat, "Tue Mar 01 10:20:30 GMT+1 2016", 1456824030},
        DateRow{"OffsetWithColon", "UTC", advertisementFormat, "Tue Mar 01 10:20:30 GMT-05:30 2016",
                1456847430},
        DateRow{"OffsetTooLong", "UTC", advertisementFormat, "Tue Mar 01 10:20:30 GMT+00001 2016",
                std::nullopt},
        DateRow{"UnknownAbbreviation", "UTC", advertisementFormat, "Tue Mar 01 10:20:30 QQT 2016",
                std::nullopt},
        DateRow{"WrongDayOfTheWeek", "UTC", advertisementFormat, "Wed Mar 01 10:20:30 GMT 2016", 1456827630},
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
        DateRow{"HourThatComesTwice", "Europe/Berlin", sessionFormat, "2016-10-30T02:30:00.000Z", 1477791000},
        DateRow{"SouthernSummer", "Australia/Lord_Howe", sessionFormat, "2016-01-01T12:00:00.000Z",
                1451610000},
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

TEST(DateFormatter, UnknownFieldMatchesNothing)
{
    EXPECT_EQ(DateFormatter("QQQ yyyy").dateFromString("Q1 2016"), std::nullopt);
}

TEST(DateFormatter, NamesAreEnglishWhateverTheHostsLocale)
{
    const auto* const german = std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_TRUE(DateFormatter(advertisementFormat).dateFromString("Tue Mar 01 10:20:30 GMT 2016"))
        << (german ? german : "no German locale on this machine");
    std::setlocale(LC_ALL, "C");
}

} // namespace

} // namespace virlo::test
