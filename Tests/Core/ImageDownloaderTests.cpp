#include "CoreTest.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerApiImageDownloader.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOImageStoreProtocol.h"
#include "VIRLOScreenshotsStoreProtocol.h"

#include <mutex>

namespace virlo::test
{
namespace
{

/// Remembers what it was given.
class FakeStore : public VIRLOImageStoreProtocol, public VIRLOScreenshotsStoreProtocol
{
public:
    std::shared_ptr<const Image> imageForItem(const VIRLOAdItem&) override { return nullptr; }

    std::shared_ptr<const Image> thumbnailForItem(const VIRLOAdItem&) override { return nullptr; }

    void setImageForItem(std::string bytes, const VIRLOAdItem& item) override
    {
        stored.push_back(item.identifier().value_or("?") + ":" + bytes);
    }

    std::shared_ptr<const Image> imageForItemAtIndexPath(const VIRLOAdItem&, const IndexPath&) override
    {
        return nullptr;
    }

    void setImageForItemAtIndexPath(std::string bytes, const VIRLOAdItem&,
                                    const IndexPath& indexPath) override
    {
        stored.push_back(std::to_string(indexPath.section) + "/" + std::to_string(indexPath.row) + ":" +
                         bytes);
    }

    std::vector<std::string> stored;
};

class ImageDownloader : public CoreTest
{
protected:
    ImageDownloader() { downloader->setImagesStore(store); }

    [[nodiscard]] VIRLOAdServerApiImageDownloader::Completion collect(const std::string& caller)
    {
        return [this, caller](const OptionalError& error) {
            const std::lock_guard lock(mutex);
            completed.push_back(caller + (error ? "!" : "") + " after " +
                                std::to_string(store->stored.size()));
        };
    }

    static std::shared_ptr<VIRLOAdItem> item(const std::string& more = R"("cid":"i",)")
    {
        return VIRLOAdItem::initWithDictionary(
            JSON::parse("{" + more +
                        R"("backgroundUrl":"https://a/b.jpg","screenshots":["https://a/0","https://a/1"]})"));
    }

    std::mutex mutex;
    std::vector<std::string> completed;
    std::shared_ptr<FakeStore> store = std::make_shared<FakeStore>();
    std::shared_ptr<VIRLOAdServerApiImageDownloader> downloader =
        VIRLOAdServerApiImageDownloader::initWithSession(transport->session());
};

TEST_F(ImageDownloader, SimultaneousCallsShareOneDownload)
{
    transport->expectHeld("GET", "/b.jpg");
    for (const char* caller : {"a", "b", "c"})
        downloader->retrieveImageForItemWithCompletion(item(), collect(caller));
    transport->release("GET", "/b.jpg", {200, "bytes"});
    settleAll();
    EXPECT_EQ(store->stored, std::vector<std::string>{"i:bytes"});
    EXPECT_EQ(completed, (std::vector<std::string>{"a after 1", "b after 1", "c after 1"})) << "stored first";
    const auto request = transport->lastRequest("GET", "/b.jpg");
    EXPECT_EQ(request.cachePolicy, CachePolicy::ReloadIgnoringLocalCacheData);
    EXPECT_EQ(request.timeout, Seconds(60));
    EXPECT_TRUE(request.headers.empty());

    transport->expect("GET", "/b.jpg", {200, "again"});
    downloader->retrieveImageForItemWithCompletion(item(), collect("d"));
    settleAll();
    EXPECT_EQ(completed.back(), "d after 2") << "a later call downloads again";

    transport->expect("GET", "/b.jpg", {200, "once"});
    downloader->retrieveImageForItemWithCompletion(item(), [&](const OptionalError&) {
        downloader->retrieveImageForItemWithCompletion(item(), collect("from a completion"));
    });
    settleAll();
    EXPECT_EQ(completed.back(), "from a completion after 3");
}

TEST_F(ImageDownloader, FailureStoresNothingAndTheBodyOfA404IsStored)
{
    const auto monitor = VIRLOConnectionQualityMonitor::sharedMonitor();
    transport->expect("GET", "/b.jpg", noResponse());
    downloader->retrieveImageForItemWithCompletion(item(), collect("a"));
    settleAll();
    EXPECT_TRUE(monitor->measurementsDownload().back()->errorOccured());
    transport->expect("GET", "/b.jpg", {404, "gone"});
    downloader->retrieveImageForItemWithCompletion(item(), collect("b"));
    settleAll();
    EXPECT_EQ(monitor->measurementsDownload().back()->bitsTransmitted(), 32U);
    EXPECT_EQ(completed, (std::vector<std::string>{"a! after 0", "b after 1"}));
    EXPECT_EQ(store->stored, std::vector<std::string>{"i:gone"});
}

TEST_F(ImageDownloader, WithoutURLFails)
{
    downloader->retrieveImageForItemWithCompletion(VIRLOAdItem::initWithDictionary({{"cid", "i"}}),
                                                   collect("none"));
    downloader->retrieveScreenshotForItemAtIndexPathWithCompletion(item(), {0, 2}, collect("beyond"));
    downloader->retrieveScreenshotForItemAtIndexPathWithCompletion(item(), {0, -1}, collect("before"));
    settleAll();
    EXPECT_THAT(completed,
                testing::UnorderedElementsAre("none! after 0", "beyond! after 0", "before! after 0"));
}

TEST_F(ImageDownloader, ScreenshotsAreNotSharedAndOutliveTheDownloader)
{
    transport->expectHeld("GET", "/b.jpg");
    transport->expectHeld("GET", "/1");
    transport->expect("GET", "/1", {200, "early"});
    downloader->retrieveImageForItemWithCompletion(item(), collect("image"));
    downloader->retrieveScreenshotForItemAtIndexPathWithCompletion(item(), {3, 1}, collect("screenshot"));
    downloader->retrieveScreenshotForItemAtIndexPathWithCompletion(item(), {3, 1}, collect("unshared"));
    settleAll();
    downloader->endSession();
    const std::weak_ptr<VIRLOAdServerApiImageDownloader> weak = downloader;
    downloader = nullptr;
    EXPECT_TRUE(weak.expired());
    transport->release("GET", "/b.jpg", {200, "bytes"});
    transport->release("GET", "/1", {200, "bytes"});
    settleAll();
    EXPECT_EQ(completed, (std::vector<std::string>{"unshared after 1", "screenshot after 1"}));
    EXPECT_EQ(store->stored, std::vector<std::string>{"3/1:early"});
}

} // namespace
} // namespace virlo::test
