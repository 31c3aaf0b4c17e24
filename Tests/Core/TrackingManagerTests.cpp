#include "CoreTest.h"
#include "PropertyList.h"
#include "VIRLOTrackingManager.h"

#include <cerrno>

namespace virlo::test
{
namespace
{

class Tracking : public CoreTest
{
protected:
    [[nodiscard]] std::vector<std::string> savedPlacements() const
    {
        const auto objects =
            PropertyList::objectsFromKeyedArchive(folder.read("a/b/tracking.store").value_or(""));
        EXPECT_TRUE(objects);
        std::vector<std::string> placements;
        const std::vector<PropertyList::ArchivedObject> none;
        for (const auto& object : objects ? *objects : none) {
            const auto item = VIRLOTrackingItem::initWithArchivedObject(object);
            EXPECT_TRUE(item);
            placements.push_back(item ? item->placement() : "");
        }
        return placements;
    }

    std::shared_ptr<VIRLOTrackingManager> manager =
        VIRLOTrackingManager::initWithDirectoryPath(folder.path("a/b"));
};

TEST_F(Tracking, MarkIsThereOnceTheFirstSaveHasRun)
{
    EXPECT_FALSE(manager->isTrackingInitiated());
    EXPECT_FALSE(manager->lastTrackingItem());
    manager->initiateTracking();
    settleAll();
    EXPECT_TRUE(manager->isTrackingInitiated());
    EXPECT_TRUE(savedPlacements().empty());
}

TEST_F(Tracking, SavesEveryEntryOfThisRunAlone)
{
    folder.write("a/b/tracking.store", "of the run before");
    for (const char* placement : {"A", "A", "B"})
        manager->registerPlacement(placement);
    EXPECT_EQ(manager->lastTrackingItem()->placement(), "B");
    EXPECT_EQ(manager->lastTrackingItem()->date(), clock.date());
    manager->saveToFile();
    manager->registerPlacement("later");
    settleAll();
    EXPECT_EQ(savedPlacements(), (std::vector<std::string>{"A", "A", "B"}));
}

TEST_F(Tracking, FileInPlaceOfTheFolderIsToldAndLeftAlone)
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

TEST_F(Tracking, BrokenDiskKeepsTheHistoryInMemoryAndSavesOnceItIsHealed)
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
    EXPECT_EQ(savedPlacements(), std::vector<std::string>{"A"});
}

TEST_F(Tracking, WithoutAPlaceForFilesThereIsNeverAMark)
{
    const auto homeless = VIRLOTrackingManager::initWithDirectoryPath("");
    expectLog("Cannot save tracking information to: ");
    homeless->initiateTracking();
    settleAll();
    EXPECT_FALSE(homeless->isTrackingInitiated());
    EXPECT_EQ(disk.calls(FaultyFileSystem::Operation::Write), 0);
}

} // namespace
} // namespace virlo::test
