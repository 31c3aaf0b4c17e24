#include "CoreTest.h"
#include "VIRLOTrackingManager.h"

#include <plist/plist.h>
#include <regex>

namespace virlo::test
{
namespace
{

// Per object: its values by key; "#2" refers to the object with the index 2.
constexpr const char* archiveOfAAndB =
    "<string>$null</string>"
    "<dict><key>NS.objects</key><array>#2#7</array><key>$class</key>#10</dict>"
    "<dict><key>placement</key>#3<key>date</key>#4<key>$class</key>#6</dict>"
    "<string>A</string>"
    "<dict><key>NS.time</key><real>T</real><key>$class</key>#5</dict>"
    "<dict><key>$classname</key><string>NSDate</string><key>$classes</key><array><string>NSDate</string>"
    "<string>NSObject</string></array></dict>"
    "<dict><key>$classname</key><string>VIRLOTrackingItem</string><key>$classes</key><array>"
    "<string>VIRLOTrackingItem</string><string>NSObject</string></array></dict>"
    "<dict><key>placement</key>#8<key>date</key>#9<key>$class</key>#6</dict>"
    "<string>B</string>"
    "<dict><key>NS.time</key><real>T</real><key>$class</key>#5</dict>"
    "<dict><key>$classname</key><string>NSMutableArray</string><key>$classes</key><array>"
    "<string>NSMutableArray</string><string>NSArray</string><string>NSObject</string></array></dict>";

class Tracking : public CoreTest
{
protected:
    [[nodiscard]] std::string secondsText() const
    {
        return std::to_string(
                   std::chrono::floor<std::chrono::seconds>(clock.date()).time_since_epoch().count() -
                   978307200) +
               "[.]?";
    }

    /// The saved archive as XML, references as "#" and index.
    [[nodiscard]] std::string saved() const
    {
        const std::string data = folder.read("a/b/tracking.store").value_or("");
        plist_t root = nullptr;
        plist_from_bin(data.data(), static_cast<std::uint32_t>(data.size()), &root);
        char* text = nullptr;
        std::uint32_t length = 0;
        plist_to_xml(root, &text, &length);
        std::string xml(text ? text : "", length);
        plist_to_xml_free(text);
        plist_free(root);
        xml = std::regex_replace(xml, std::regex(R"(\s+<)"), "<");
        xml = std::regex_replace(
            xml, std::regex(R"(<dict><key>CF\$UID</key><integer>(\d+)</integer></dict>)"), "#$1");
        // "T": seconds since 2001-01-01, as of the test's clock
        return std::regex_replace(xml, std::regex("<real>" + secondsText() + R"(\d*</real>)"),
                                  "<real>T</real>");
    }

    std::shared_ptr<VIRLOTrackingManager> manager =
        VIRLOTrackingManager::initWithDirectoryPath(folder.path("a/b"));
};

TEST_F(Tracking, SavesTheEntriesOfThisRunAsAKeyedArchive)
{
    folder.write("a/b/tracking.store", "of the run before");
    manager->registerPlacement("A");
    clock.advance(Seconds(0.25));
    manager->registerPlacement("B");
    EXPECT_EQ(manager->lastTrackingItem()->placement(), "B");
    EXPECT_EQ(manager->lastTrackingItem()->date(), clock.date());
    manager->saveToFile();
    manager->registerPlacement("later");
    settleAll();
    EXPECT_THAT(saved(),
                testing::HasSubstr("<key>$objects</key><array>" + std::string(archiveOfAAndB) + "</array>"));
    EXPECT_THAT(saved(), testing::HasSubstr("<key>$top</key><dict><key>root</key>#1</dict>"));
}

TEST_F(Tracking, FileInPlaceOfTheFolderIsLoggedAndKept)
{
    folder.write("a/b", "mine");
    expectLog("WARNING! Internal Inconsistency A file with the same name as expected directory exists in "
              "cache. PATH: " +
              folder.path("a/b"));
    expectLog("Cannot save tracking information to: " + folder.path("a/b/tracking.store"));
    manager->initiateTracking();
    settleAll();
    EXPECT_FALSE(manager->isTrackingInitiated());
    EXPECT_EQ(folder.read("a/b"), "mine");
}

TEST_F(Tracking, HistoryStaysInMemoryUntilTheDiskWorksAgain)
{
    disk.setReadOnly();
    expectLog("Cannot create directory " + folder.path("a/b") + ". Error: ");
    expectLog("Cannot save tracking information to: ");
    manager->registerPlacement("A");
    manager->initiateTracking();
    settleAll();
    EXPECT_FALSE(manager->isTrackingInitiated());

    disk.heal();
    manager->initiateTracking();
    settleAll();
    EXPECT_THAT(saved(), testing::HasSubstr("<string>A</string>"));
}

} // namespace
} // namespace virlo::test
