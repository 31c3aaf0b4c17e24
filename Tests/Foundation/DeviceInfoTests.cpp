#include "DeviceInfo.h"

#include "AdvertisingIdentifier.h"
#include "FaultyFileSystem.h"
#include "Folders.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

const auto isUUID =
    testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");

constexpr const char* vendorFile = "data/foundation-tests/Library/VendorIdentifier";

TEST(DeviceInfo, VendorIdentifierIsKeptOnDiskAndReplacedIfDamaged)
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
    EXPECT_EQ(DeviceInfo::identifierForVendor(), made);
}

TEST(DeviceInfo, VendorIdentifierLastsForTheProcessIfTheDiskFails)
{
    const TemporaryFolder folder;
    FaultyFileSystem disk;
    disk.setReadOnly();
    const auto made = DeviceInfo::identifierForVendor();
    EXPECT_THAT(made, isUUID);
    EXPECT_EQ(DeviceInfo::identifierForVendor(), made);
    EXPECT_THAT(folder.files(), ElementsAre());
}

TEST(DeviceInfo, LanguageComesFromTheEnvironment)
{
    struct Row {
        const char* list;
        const char* locale;
        const char* tag;
    };

    for (const auto& [list, locale, tag] :
         {Row{"", "en_US.UTF-8", "en-US"}, Row{"", "de_AT.UTF-8@euro", "de-AT"},
          Row{"", "sr_RS@latin", "sr-Latn-RS"}, Row{"", "eo", "eo"},
          Row{"pt_BR:pt:en", "en_US.UTF-8", "pt-BR"}, Row{"pt_BR", "C.UTF-8", "en"},
          Row{"%n%n", "../../etc\r\n", "en"}}) {
        setenv("LANGUAGE", list, 1);
        setenv("LC_ALL", locale, 1);
        EXPECT_EQ(DeviceInfo::preferredLanguage(), tag) << locale;
    }
    unsetenv("LANGUAGE");
    unsetenv("LC_ALL");
}

TEST(DeviceInfo, TimeZoneFollowsTheVariable)
{
    for (const auto& [variable, zone] :
         std::map<std::string, std::string>{{"Europe/Berlin", "Europe/Berlin"},
                                            {":Europe/Berlin", "Europe/Berlin"},
                                            {"/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
                                            {"<+0330>-3:30", "GMT+03:30"},
                                            {"XYZ5", "GMT-05:00"},
                                            {"", "Etc/UTC"},
                                            {"Nowhere/Land", "Etc/UTC"}}) {
        setenv("TZ", variable.c_str(), 1);
        EXPECT_EQ(DeviceInfo::timeZoneName(), zone) << variable;
    }
    unsetenv("TZ");
}

TEST(AdvertisingIdentifier, IsAbsentUntilSetToAUUID)
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
