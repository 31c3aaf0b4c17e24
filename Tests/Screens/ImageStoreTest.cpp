#include "Exception.h"
#include "FaultyFileSystem.h"
#include "Image.h"
#include "LogCapture.h"
#include "ScreenTest.h"
#include "TemporaryFolder.h"
#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdInterstitialImageStore.h"
#include "VIRLOAdItem.h"
#include "VIRLOAppGridFeaturedImageStore.h"
#include "VIRLOAppGridImageStore.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<VIRLOAdItem> item(const std::string& identifier)
{
    return VIRLOAdItem::initWithDictionary({{"cid", identifier}});
}

/// How many of the images stored one after the other a store without a disk still has.
template <typename Store>
int keptInMemory(const std::string& bytes, int stored)
{
    FaultyFileSystem disk;
    disk.setReadOnly();
    const auto store = Store::initSingleton();
    for (int i = 0; i < stored; ++i)
        store->setImageForItem(bytes, *item(std::to_string(i)));
    int kept = 0;
    for (int i = stored - 1; i >= 0; --i)
        kept += store->imageForItem(*item(std::to_string(i))) ? 1 : 0;
    return kept;
}

std::string padded(std::string bytes, std::size_t size)
{
    bytes.resize(std::max(size, bytes.size()));
    return bytes;
}

TEST(ImageStore, WritesTheBytesAndARoundedThumbnailUnderTheIdentifier)
{
    const TemporaryFolder folder;
    const auto store = VIRLOAppGridFeaturedImageStore::initSingleton();
    const std::string bytes = imageFile(Qt::red, {300, 150});
    store->setImageForItem(bytes, *item("Ab c.1%41"));
    const std::string folders = "VIRLOAppGridFeaturedImageStore/";
    ASSERT_TRUE(store->imageCacheDirectory().ends_with(folders + "images/"));
    ASSERT_TRUE(store->thumbnailCacheDirectory().ends_with(folders + "thumbnails"));
    std::vector<std::string> names;
    for (const std::string& file : folder.files())
        names.push_back(file.substr(file.find(folders) + folders.size()));
    EXPECT_THAT(names, ElementsAre("images/Ab c.1%41", "thumbnails/Ab c.1%41"));
    EXPECT_EQ(folder.read(folder.files()[0]), bytes);

    // Another store finds them on the disk, by any item of that identifier.
    const auto other = VIRLOAppGridFeaturedImageStore::initSingleton();
    EXPECT_EQ(other->imageForItem(*item("Ab c.1%41"))->width(), 300);
    const auto thumbnail = other->thumbnailForItem(*item("Ab c.1%41"));
    EXPECT_EQ(thumbnail->qImage().size(), QSize(150, 150));
    EXPECT_EQ(qAlpha(thumbnail->qImage().pixel(0, 0)), 0);
    EXPECT_EQ(thumbnail->qImage().pixelColor(75, 75), QColor(Qt::red));
}

TEST(ImageStore, BoundsItsMemory)
{
    const TemporaryFolder folder;
    const std::string small = imageFile(Qt::red, {8, 8});
    EXPECT_EQ(keptInMemory<VIRLOAppGridImageStore>(small, 30), 20);
    EXPECT_EQ(keptInMemory<VIRLOAppGridFeaturedImageStore>(small, 30), 20);
    EXPECT_EQ(keptInMemory<VIRLOAdInterstitialImageStore>(small, 30), 20);
    const std::string large = padded(small, std::size_t{3} << 20);
    EXPECT_EQ(keptInMemory<VIRLOAppGridImageStore>(large, 6), 3);
    EXPECT_EQ(keptInMemory<VIRLOAdFullscreenImageStore>(large, 6), 2);
}

TEST(ImageStore, AppGridKeepsBytesThatAreNoImageAsTheirOwnThumbnail)
{
    const TemporaryFolder folder;
    const auto grid = VIRLOAppGridImageStore::initSingleton();
    const std::string document = "%PDF-1.4 text";
    grid->setImageForItem(document, *item("pdf"));
    grid->setImageForItem(imageFile(Qt::red), *item("png"));
    const auto thumbnails = [&](const std::string& name) {
        return folder.read(grid->thumbnailCacheDirectory().substr(folder.path().size() + 1) + "/" + name);
    };
    EXPECT_EQ(thumbnails("pdf"), document);
    EXPECT_EQ(Image::decode(thumbnails("png").value_or(""))->width(), 150);
    EXPECT_FALSE(grid->thumbnailForItem(*item("pdf")));
}

TEST(ImageStore, ADamagedImageIsAMissAndHarmsNothing)
{
    allowLog("[Qt]");
    const TemporaryFolder folder;
    for (const std::shared_ptr<VIRLOImageStore>& store :
         {std::shared_ptr<VIRLOImageStore>(VIRLOAppGridImageStore::initSingleton()),
          std::shared_ptr<VIRLOImageStore>(VIRLOAppGridFeaturedImageStore::initSingleton()),
          std::shared_ptr<VIRLOImageStore>(VIRLOAdFullscreenImageStore::initSingleton())}) {
        for (const std::string& bytes :
             {std::string(), std::string("<html>404</html>"), imageFile(Qt::red).substr(0, 300)}) {
            store->setImageForItem(bytes, *item("damaged"));
            EXPECT_FALSE(store->imageForItem(*item("damaged"))) << bytes.size() << " bytes";
            store->setImageForItem(imageFile(Qt::green, {8, 8}), *item("damaged"));
            EXPECT_TRUE(store->imageForItem(*item("damaged")));
        }
    }
}

class HostileIdentifier : public testing::TestWithParam<std::pair<const char*, std::string>>
{
};

TEST_P(HostileIdentifier, StaysInMemory)
{
    const TemporaryFolder folder;
    const std::string& identifier = GetParam().second;
    const auto grid = VIRLOAppGridImageStore::initSingleton();
    const auto fullscreen = VIRLOAdFullscreenImageStore::initSingleton();
    const auto interstitial = VIRLOAdInterstitialImageStore::initSingleton();
    const std::string bytes = imageFile(Qt::red, {8, 8});
    grid->setImageForItem(bytes, *item(identifier));
    fullscreen->setImageForItem(bytes, *item(identifier));
    EXPECT_THAT(folder.files(), IsEmpty());
    EXPECT_TRUE(grid->imageForItem(*item(identifier)));
    EXPECT_TRUE(grid->thumbnailForItem(*item(identifier)));
    EXPECT_TRUE(fullscreen->imageForItem(*item(identifier)));
    EXPECT_FALSE(interstitial->imageForItem(*item(identifier)));
}

INSTANTIATE_TEST_SUITE_P(All, HostileIdentifier,
                         testing::Values(std::pair("Climbing", "../../x"), std::pair("Empty", ""),
                                         std::pair("Slash", "a/b"), std::pair("Dots", ".."),
                                         std::pair("Nul", std::string("a\0b", 3)),
                                         std::pair("FourKibibytes", std::string(4096, 'x'))),
                         [](const auto& row) { return row.param.first; });

TEST(ImageStore, FullscreenKeepsInMemoryOnlyWhatCannotBeWritten)
{
    const TemporaryFolder folder;
    const auto store = VIRLOAdFullscreenImageStore::initSingleton();
    store->setImageForItem(imageFile(Qt::red, {4000, 2000}), *item("one"));
    EXPECT_EQ(store->imageForItem(*item("one"))->width(), 4000) << "at full resolution";
    FaultyFileSystem disk;
    disk.fail(FaultyFileSystem::Operation::Read, EIO);
    EXPECT_FALSE(store->imageForItem(*item("one")));
    disk.heal();
    EXPECT_EQ(store->imageForItem(*item("one"))->qImage().pixelColor(4, 4), QColor(Qt::red));

    disk.setReadOnly();
    store->setImageForItem(imageFile(Qt::green, {8, 8}), *item("one"));
    EXPECT_EQ(store->imageForItem(*item("one"))->qImage().pixelColor(4, 4), QColor(Qt::green));
    disk.heal();
    store->setImageForItem(imageFile(Qt::blue, {8, 8}), *item("one"));
    EXPECT_EQ(store->imageForItem(*item("one"))->qImage().pixelColor(4, 4), QColor(Qt::blue));
}

TEST(ImageStore, LogsAFileInThePlaceOfItsFolder)
{
    const TemporaryFolder folder;
    const std::string images = VIRLOAppGridImageStore::initSingleton()->imageCacheDirectory();
    const std::string relative = images.substr(folder.path().size() + 1);
    ASSERT_EQ(std::system(("rmdir '" + images + "'").c_str()), 0);
    folder.write(relative.substr(0, relative.size() - 1), "a file");
    expectLog(
        "WARNING! Internal Inconsistency A file with the same name as expected directory exists in cache. "
        "PATH: ");
    const auto store = VIRLOAppGridImageStore::initSingleton();
    store->setImageForItem(imageFile(Qt::red, {8, 8}), *item("one"));
    EXPECT_TRUE(store->imageForItem(*item("one")));
    expectLog("PATH: ");
    EXPECT_FALSE(VIRLOAppGridImageStore::initSingleton()->imageForItem(*item("one")));
}

TEST(ImageStore, ScreenshotsAreFoundInMemoryOnlyThoughTheyAreWritten)
{
    const TemporaryFolder folder;
    const auto store = VIRLOAdInterstitialImageStore::initSingleton();
    store->setImageForItemAtIndexPath(imageFile(Qt::red, {8, 8}), *item("abc"), {0, 2});
    ASSERT_EQ(folder.files().size(), 1U);
    EXPECT_TRUE(folder.files()[0].ends_with("thumbnails/abc_0_2"));
    EXPECT_TRUE(store->imageForItemAtIndexPath(*item("abc"), {0, 2}));
    EXPECT_FALSE(store->imageForItemAtIndexPath(*item("abc"), {0, 1}));

    const auto later = VIRLOAdInterstitialImageStore::initSingleton();
    EXPECT_FALSE(later->imageForItemAtIndexPath(*item("abc"), {0, 2}));
    // A file in the folder of images is found, and is then the item's image.
    const std::string images = later->imageCacheDirectory().substr(folder.path().size() + 1);
    folder.write(images + "abc_0_2", imageFile(Qt::blue, {16, 8}));
    EXPECT_EQ(later->imageForItemAtIndexPath(*item("abc"), {0, 2})->width(), 16);
    EXPECT_EQ(later->imageForItem(*item("abc"))->width(), 16);
}

TEST(ImageStore, AbstractOperationsRaise)
{
    const TemporaryFolder folder;
    const auto raised = [](const auto& operation) -> std::string {
        try {
            operation();
        } catch (const Exception& exception) {
            return exception.name() + ": " + exception.reason();
        }
        return {};
    };
    EXPECT_EQ(
        raised([] {
            static_cast<void>(VIRLOAdFullscreenImageStore::initSingleton()->thumbnailForItem(*item("x")));
        }),
        "Abstract method called.: Abstract method thumbnailForItem: called in VIRLOAdFullscreenImageStore. "
        "Remember to use one of concrete descendant classes rather than abstract.");
    EXPECT_EQ(raised([] { VIRLOAppGridImageStore::init(); }),
              "Singleton: Use + [VIRLOAppGridFeaturedImageStore sharedStore]");
    EXPECT_EQ(raised([] { static_cast<void>(VIRLOImageStore::sharedStore()); }),
              "NSInternalInconsistencyException: This is abstract class. Please instantiate one of its "
              "descendants.");
}

} // namespace

} // namespace virlo::test
