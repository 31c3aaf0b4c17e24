#include "CoreTest.h"
#include "PropertyList.h"
#include "VIRLOAppRequestStore.h"

#include <algorithm>

namespace virlo::test
{
namespace
{

class AppRequestStore : public CoreTest
{
protected:
    static constexpr const char* file = "s/requestedItems.store";

    [[nodiscard]] std::shared_ptr<VIRLOAppRequestStore> open() const
    {
        return VIRLOAppRequestStore::storeWithDirectoryPath(folder.path("s"));
    }

    void writeFile(const std::map<std::string, Date>& entries) const
    {
        folder.write(file, PropertyList::xmlFromDates(entries));
    }

    [[nodiscard]] static std::vector<std::string> texts(const std::shared_ptr<VIRLOAppRequestStore>& store)
    {
        std::vector<std::string> result;
        for (const URL& url : store->items())
            result.push_back(url.absoluteString());
        std::ranges::sort(result);
        return result;
    }

    [[nodiscard]] static URL url(const std::string& name)
    {
        return *URL::fromString("https://ads.example/" + name);
    }

    const std::string a = url("a").absoluteString();
    const std::string b = url("b").absoluteString();
};

TEST_F(AppRequestStore, KeepsItsEntriesAcrossLaunches)
{
    const auto store = open();
    store->addItem(url("b"));
    store->addItem(url("a"));
    store->removeItem(url("b"));
    store->removeItem(url("gone"));
    store->save();
    settleAll();
    EXPECT_THAT(folder.read(file).value(), testing::StartsWith("<?xml"));
    EXPECT_EQ(texts(open()), std::vector{a});
}

TEST_F(AppRequestStore, ForgetsAfterADayFromTheLastAdding)
{
    const auto store = open();
    store->addItem(url("a"));
    store->addItem(url("b"));
    clock.advance(Seconds(1));
    store->addItem(url("b"));
    clock.advance(Seconds(86399));
    store->removeExpiredItems();
    EXPECT_EQ(texts(store), (std::vector{a, b})) << "one exactly at the limit stays";
    clock.advance(Seconds(1));
    store->removeExpiredItems();
    EXPECT_EQ(texts(store), std::vector{b}) << "a list asked for later sees the purge done";
}

class UnreadableFile : public AppRequestStore, public testing::WithParamInterface<const char*>
{
};

TEST_P(UnreadableFile, IsAnEmptyStore)
{
    folder.write(file, GetParam());
    const auto store = open();
    EXPECT_TRUE(texts(store).empty());
    store->addItem(url("a"));
    store->save();
    settleAll();
    EXPECT_EQ(texts(open()), std::vector{a});
}

INSTANTIATE_TEST_SUITE_P(Contents, UnreadableFile,
                         testing::Values("", "garbage", "<?xml version=\"1.0\"?><plist><dict><key>a</key>",
                                         "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>",
                                         "bplist00\xff"));

TEST_F(AppRequestStore, EntryThatIsNoURLIsPassedOver)
{
    writeFile({{"no url", clock.date()}, {a, clock.date()}});
    EXPECT_EQ(texts(open()), std::vector{a});
}

TEST_F(AppRequestStore, WhatHappensBeforeTheFileIsReadHoldsAgainstIt)
{
    const Date old = clock.date() - std::chrono::hours(48);
    writeFile({{a, clock.date()},
               {b, clock.date()},
               {url("old").absoluteString(), old},
               {url("c").absoluteString(), old}});
    disk.hold(FaultyFileSystem::Operation::Read);
    const auto store = open();
    store->removeItem(url("a"));
    store->addItem(url("c"));
    store->removeExpiredItems();
    store->save();
    disk.release();
    settleAll();
    const std::vector expected{b, url("c").absoluteString()};
    EXPECT_EQ(texts(store), expected);
    EXPECT_EQ(texts(open()), expected) << "the save waited for the reading and lost nothing";
}

TEST_F(AppRequestStore, SlowWriteHoldsNobodyUp)
{
    const auto store = open();
    settleAll();
    disk.hold(FaultyFileSystem::Operation::Write);
    store->save();
    store->addItem(url("a"));
    EXPECT_EQ(texts(store), std::vector{a});
    disk.release();
    settleAll();
}

TEST_F(AppRequestStore, BrokenDiskLeavesItUsable)
{
    disk.setReadOnly();
    expectLog("Cannot create directory " + folder.path("s") + ". Error: ");
    const auto store = open();
    store->addItem(url("a"));
    store->save();
    settleAll();
    EXPECT_EQ(texts(store), std::vector{a});
}

TEST_F(AppRequestStore, FileInPlaceOfTheFolderIsToldOnce)
{
    folder.write("s", "mine");
    expectLog("File is located in directory where subdirectory is expected to exist. (" + folder.path("s"));
    const auto store = open();
    store->addItem(url("a"));
    store->save();
    settleAll();
    EXPECT_EQ(texts(store), std::vector{a});
    EXPECT_EQ(folder.read("s"), "mine");
}

} // namespace
} // namespace virlo::test
