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

/// Fetches the pictures of ad items into an image store and measures each download. Belongs to one screen,
/// which calls `endSession` when it goes. Callers who want one item's picture at the same time share one
/// download. Any thread; nothing is tried again.
class VIRLOAdServerApiImageDownloader : public std::enable_shared_from_this<VIRLOAdServerApiImageDownloader>
{
public:
    static const char* const kImagesRetrieveQueue;

    /// Nothing on success: the picture is then in the store. A body that came is stored also beside an error,
    /// and also where the server answered with a failure.
    using Completion = std::function<void(const virlo::OptionalError&)>;

    [[nodiscard]] static std::shared_ptr<VIRLOAdServerApiImageDownloader> init();
    /// On a transport of the caller's.
    [[nodiscard]] static std::shared_ptr<VIRLOAdServerApiImageDownloader>
    initWithSession(std::shared_ptr<virlo::URLSession> session);

    VIRLOAdServerApiImageDownloader(const VIRLOAdServerApiImageDownloader&) = delete;
    VIRLOAdServerApiImageDownloader& operator=(const VIRLOAdServerApiImageDownloader&) = delete;

    [[nodiscard]] std::shared_ptr<VIRLOImageStoreProtocol> imagesStore() const;
    void setImagesStore(std::shared_ptr<VIRLOImageStoreProtocol> store);

    /// Downloads under way finish; new ones fail.
    void endSession();

    /// Fetches the item's `backgroundURL`. The completion runs on the HTTP session's queue, those of one
    /// download in the order asked; not at all where the downloader has gone by then.
    void retrieveImageForItemWithCompletion(std::shared_ptr<VIRLOAdItem> item, Completion completion);
    /// Fetches the screenshot at the index path's row (the section only names its place in the store); a row
    /// that the item lacks fails. Not shared. The completion runs also where the downloader has gone.
    void retrieveScreenshotForItemAtIndexPathWithCompletion(std::shared_ptr<VIRLOAdItem> item,
                                                            virlo::IndexPath indexPath,
                                                            Completion completion);

    /// True where nobody waits for this item's picture yet: the caller must start the download.
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
