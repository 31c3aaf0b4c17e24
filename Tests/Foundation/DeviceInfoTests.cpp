#include "DeviceInfo.h"

#include "AdvertisingIdentifier.h"
#include "FaultyFileSystem.h"
#include "Folders.h"
#include "LogCapture.h"
#include "RowName.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

const auto isUUID =
    testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");

constexpr const char* vendorFile = "data/foundation-tests/Library/VendorIdentifier";

TEST(DeviceInfo, FactsAreNeverEmpty)
{
    EXPECT_FALSE(DeviceInfo::systemName().empty());
    EXPECT_FALSE(DeviceInfo::systemVersion().empty());
    EXPECT_FALSE(DeviceInfo::model().empty());
}

TEST(DeviceInfo, VendorIdentifierIsMadeOnceAndKeptOnDisk)
{
    const TemporaryFolder folder;
    const auto made = DeviceInfo::identifierForVendor();
    EXPECT_THAT(made, isUUID);
    EXPECT_EQ(folder.read(vendorFile), made);
    EXPECT_EQ(DeviceInfo::identifierForVendor(), made);
}

TEST(DeviceInfo, VendorIdentifierIsReadBackAndADamagedOneReplaced)
{
    constexpr const char* kept = "0F0E0D0C-0B0A-4908-8706-050403020100";
    {
        const TemporaryFolder folder;
        folder.write(vendorFile, kept);
        EXPECT_EQ(DeviceInfo::identifierForVendor(), kept);
    }
    const TemporaryFolder folder;
    folder.write(vendorFile, "0F0E0D0C-0B0A-4908-8706-05040302010\n");
    const auto made = DeviceInfo::identifierForVendor();
    EXPECT_THAT(made, isUUID);
    EXPECT_EQ(folder.read(vendorFile), made);
}

TEST(DeviceInfo, VendorIdentifierLastsForTheProcessWhereTheDiskRefuses)
{
    const TemporaryFolder folder;
    FaultyFileSystem disk;
    disk.setReadOnly();
    const auto made = DeviceInfo::identifierForVendor();
    EXPECT_THAT(made, isUUID);
    EXPECT_EQ(DeviceInfo::identifierForVendor(), made);
    EXPECT_THAT(folder.files(), ElementsAre());
}

struct LanguageRow {
    const char* name;
    const char* list;
    const char* locale;
    const char* tag;
};

std::ostream& operator<<(std::ostream& stream, const LanguageRow& row)
{
    return stream << row.name;
}

class PreferredLanguage : public testing::TestWithParam<LanguageRow>
{
protected:
    void TearDown() override
    {
        unsetenv("LANGUAGE");
        unsetenv("LC_ALL");
    }
};

TEST_P(PreferredLanguage, ComesFromTheEnvironment)
{
    setenv("LANGUAGE", GetParam().list, 1);
    setenv("LC_ALL", GetParam().locale, 1);
    EXPECT_EQ(DeviceInfo::preferredLanguage(), GetParam().tag);
}

INSTANTIATE_TEST_SUITE_P(Table, PreferredLanguage,
                         testing::Values(LanguageRow{"Plain", "", "en_US.UTF-8", "en-US"},
                                         LanguageRow{"Modifier", "", "de_AT.UTF-8@euro", "de-AT"},
                                         LanguageRow{"Script", "", "sr_RS@latin", "sr-Latn-RS"},
                                         LanguageRow{"NoTerritory", "", "eo", "eo"},
                                         LanguageRow{"ListWins", "pt_BR:pt:en", "en_US.UTF-8", "pt-BR"},
                                         LanguageRow{"ListIsNothingBesideC", "pt_BR", "C.UTF-8", "en"},
                                         LanguageRow{"Posix", "", "POSIX", "en"},
                                         LanguageRow{"Garbage", "%n%n", "../../etc\r\n", "en"}),
                         rowName);

struct ZoneRow {
    const char* name;
    const char* variable;
    const char* zone;
};

std::ostream& operator<<(std::ostream& stream, const ZoneRow& row)
{
    return stream << row.name;
}

class TimeZoneName : public testing::TestWithParam<ZoneRow>
{
protected:
    void TearDown() override { unsetenv("TZ"); }
};

TEST_P(TimeZoneName, FollowsTheVariable)
{
    setenv("TZ", GetParam().variable, 1);
    EXPECT_EQ(DeviceInfo::timeZoneName(), GetParam().zone);
}

INSTANTIATE_TEST_SUITE_P(Table, TimeZoneName,
                         testing::Values(ZoneRow{"Plain", "Europe/Berlin", "Europe/Berlin"},
                                         ZoneRow{"Colon", ":Europe/Berlin", "Europe/Berlin"},
                                         ZoneRow{"Path", "/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
                                         ZoneRow{"Rule", "<+0330>-3:30", "GMT+03:30"},
                                         ZoneRow{"Behind", "XYZ5", "GMT-05:00"},
                                         ZoneRow{"Empty", "", "Etc/UTC"},
                                         ZoneRow{"Unknown", "Nowhere/Land", "Etc/UTC"}),
                         rowName);

TEST(AdvertisingIdentifier, IsNoneUntilGivenAndOnlyAUUID)
{
    constexpr const char* given = "6d92078a-8246-4ba4-ae5b-76104861e7dc";
    EXPECT_EQ(AdvertisingIdentifier::current(), std::nullopt);
    AdvertisingIdentifier::set(given);
    EXPECT_EQ(AdvertisingIdentifier::current(), given);
    const auto renewed = AdvertisingIdentifier::renew();
    EXPECT_THAT(renewed, isUUID);
    EXPECT_EQ(AdvertisingIdentifier::current(), renewed);
    AdvertisingIdentifier::set("00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(AdvertisingIdentifier::current(), std::nullopt);
    AdvertisingIdentifier::set(given);
    expectLog("The advertising identifier is not a UUID");
    AdvertisingIdentifier::set("my-device\r\nX-Header: 1");
    EXPECT_EQ(AdvertisingIdentifier::current(), std::nullopt);
    AdvertisingIdentifier::withhold();
}

} // namespace

} // namespace virlo::test
