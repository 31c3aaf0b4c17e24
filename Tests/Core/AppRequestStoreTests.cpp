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
    EXPECT_EQ(texts(store), std::vector{b}) << "a later call sees the purge done";
}

TEST_F(AppRequestStore, DamagedFileIsAnEmptyStoreAndOtherKeysAreSkipped)
{
    for (const char* content : {"", "garbage", "<?xml version=\"1.0\"?><plist><dict><key>a</key>"}) {
        folder.write(file, content);
        const auto store = open();
        EXPECT_TRUE(texts(store).empty()) << content;
        store->addItem(url("a"));
        store->save();
        settleAll();
        EXPECT_EQ(texts(open()), std::vector{a}) << content;
    }
    folder.write(file, PropertyList::xmlFromDates({{"no url", clock.date()}, {b, clock.date()}}));
    EXPECT_EQ(texts(open()), std::vector{b});
}

TEST_F(AppRequestStore, WorksInMemoryWhereTheDiskFails)
{
    {
        disk.setReadOnly();
        expectLog("Cannot create directory " + folder.path("s") + ". Error: ");
        const auto store = open();
        store->addItem(url("a"));
        store->save();
        settleAll();
        EXPECT_EQ(texts(store), std::vector{a});
    }
    disk.heal();
    folder.write("s", "a file in place of the folder");
    expectLog("File is located in directory where subdirectory is expected to exist. (" + folder.path("s"));
    const auto store = open();
    store->addItem(url("a"));
    store->save();
    settleAll();
    EXPECT_EQ(texts(store), std::vector{a});
    EXPECT_EQ(folder.read("s"), "a file in place of the folder");
}

} // namespace
} // namespace virlo::test
