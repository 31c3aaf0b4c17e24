#pragma once

#include "IndexPath.h"
#include "URLSession.h"
#include "VIRLOCompletionTable.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class VIRLOAdItem;
class VIRLOConnectionMeasurement;
class VIRLOImageStoreProtocol;

/// Downloads the images of ad items into an image store and measures each download. Belongs to one screen,
/// which calls `endSession` when it is destroyed. Simultaneous calls for one item's image share one download.
/// Any thread; nothing is retried.
class VIRLOAdServerApiImageDownloader : public std::enable_shared_from_this<VIRLOAdServerApiImageDownloader>
{
public:
    static const char* const kImagesRetrieveQueue;

    /// Nothing on success: the image is then in the store. A body is stored even with an error and whatever
    /// the HTTP status.
    using Completion = std::function<void(const virlo::OptionalError&)>;

    [[nodiscard]] static std::shared_ptr<VIRLOAdServerApiImageDownloader> init();
    /// With the caller's HTTP session.
    [[nodiscard]] static std::shared_ptr<VIRLOAdServerApiImageDownloader>
    initWithSession(std::shared_ptr<virlo::URLSession> session);

    VIRLOAdServerApiImageDownloader(const VIRLOAdServerApiImageDownloader&) = delete;
    VIRLOAdServerApiImageDownloader& operator=(const VIRLOAdServerApiImageDownloader&) = delete;

    [[nodiscard]] std::shared_ptr<VIRLOImageStoreProtocol> imagesStore() const;
    void setImagesStore(std::shared_ptr<VIRLOImageStoreProtocol> store);

    /// Running downloads finish; new ones fail.
    void endSession();

    /// Downloads the item's `backgroundURL`. Completions run on the HTTP session's queue, those of one
    /// download in the order of the calls. None is called after the downloader has been destroyed.
    void retrieveImageForItemWithCompletion(std::shared_ptr<VIRLOAdItem> item, Completion completion);
    /// Downloads the screenshot at the index path's row (the section only selects its key in the store); a
    /// row out of range fails. Not shared. The completion runs even after the downloader has been destroyed.
    void retrieveScreenshotForItemAtIndexPathWithCompletion(std::shared_ptr<VIRLOAdItem> item,
                                                            virlo::IndexPath indexPath,
                                                            Completion completion);

    /// True if no other handler waits for this item's image: the caller must start the download.
    [[nodiscard]] bool addCompletionHandlerForImageOfItem(Completion handler, const VIRLOAdItem& item);
    [[nodiscard]] std::vector<Completion> completionHandlersForImagesOfItem(const VIRLOAdItem& item);
    void removeCompletionHandlersForImageOfItem(const VIRLOAdItem& item);

private:
    explicit VIRLOAdServerApiImageDownloader(std::shared_ptr<virlo::URLSession> session);

    void download(const std::optional<virlo::URL>& url,
                  std::function<void(std::string, const virlo::OptionalError&)> done);

    const std::shared_ptr<virlo::URLSession> m_session;
    VIRLOCompletionTable<Completion> m_completionHandlersForImagesBeingDownloaded;
    mutable std::mutex m_mutex;
    std::shared_ptr<VIRLOImageStoreProtocol> m_imagesStore;
};
