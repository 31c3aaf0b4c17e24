#include "VIRLOAdServerApiImageDownloader.h"

#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdItem.h"
#include "VIRLOConnectionQualityMonitor.h"
#include "VIRLOImageStoreProtocol.h"
#include "VIRLOScreenshotsStoreProtocol.h"

#include <utility>

using virlo::OptionalError;
using virlo::URLSession;

// The label's prefix differs from the others' on purpose.
const char* const VIRLOAdServerApiImageDownloader::kImagesRetrieveQueue =
    "com.kastvel.KSTVImagesRetrieveQueue";

VIRLOAdServerApiImageDownloader::VIRLOAdServerApiImageDownloader(std::shared_ptr<URLSession> session)
    : m_session(std::move(session))
    , m_completionHandlersForImagesBeingDownloaded(kImagesRetrieveQueue)
{
}

std::shared_ptr<VIRLOAdServerApiImageDownloader> VIRLOAdServerApiImageDownloader::init()
{
    return initWithSession(
        URLSession::sessionWithConfiguration(virlo::URLSessionConfiguration::defaultConfiguration()));
}

std::shared_ptr<VIRLOAdServerApiImageDownloader>
VIRLOAdServerApiImageDownloader::initWithSession(std::shared_ptr<URLSession> session)
{
    return std::shared_ptr<VIRLOAdServerApiImageDownloader>(
        new VIRLOAdServerApiImageDownloader(std::move(session)));
}

std::shared_ptr<VIRLOImageStoreProtocol> VIRLOAdServerApiImageDownloader::imagesStore() const
{
    const std::lock_guard lock(m_mutex);
    return m_imagesStore;
}

void VIRLOAdServerApiImageDownloader::setImagesStore(std::shared_ptr<VIRLOImageStoreProtocol> store)
{
    const std::lock_guard lock(m_mutex);
    m_imagesStore = std::move(store);
}

void VIRLOAdServerApiImageDownloader::endSession()
{
    m_session->finishTasksAndInvalidate();
}

void VIRLOAdServerApiImageDownloader::retrieveImageForItemWithCompletion(std::shared_ptr<VIRLOAdItem> item,
                                                                         Completion completion)
{
    if (!addCompletionHandlerForImageOfItem(std::move(completion), *item))
        return;
    const auto url = item->backgroundURL();
    VIRLOAdFrameworkLogger::logInfoWithFormat("Load image for item %@ URL: %@", item, url);
    download(url, [weak = weak_from_this(), item = std::move(item)](std::string bytes,
                                                                    const OptionalError& error) {
        const auto self = weak.lock();
        if (!self)
            return;
        // Stored first, so that the completions find the image; a body is stored even with an error.
        const auto store = self->imagesStore();
        if (!bytes.empty() && store)
            store->setImageForItem(std::move(bytes), *item);
        auto& table = self->m_completionHandlersForImagesBeingDownloaded;
        table.finish(table.key(item->identifier(), item.get()), [&](const Completion& handler) {
            if (handler)
                handler(error);
        });
    });
}

void VIRLOAdServerApiImageDownloader::retrieveScreenshotForItemAtIndexPathWithCompletion(
    std::shared_ptr<VIRLOAdItem> item, virlo::IndexPath indexPath, Completion completion)
{
    const auto& urls = item->screenshotsURLs();
    std::optional<virlo::URL> url;
    if (indexPath.row >= 0 && static_cast<std::size_t>(indexPath.row) < urls.size())
        url = urls[static_cast<std::size_t>(indexPath.row)];
    download(url, [weak = weak_from_this(), item = std::move(item), indexPath,
                   completion = std::move(completion)](std::string bytes, const OptionalError& error) {
        const auto self = weak.lock();
        const auto store =
            std::dynamic_pointer_cast<VIRLOScreenshotsStoreProtocol>(self ? self->imagesStore() : nullptr);
        if (!bytes.empty() && store)
            store->setImageForItemAtIndexPath(std::move(bytes), *item, indexPath);
        if (completion)
            completion(error);
    });
}

void VIRLOAdServerApiImageDownloader::download(const std::optional<virlo::URL>& url,
                                               std::function<void(std::string, const OptionalError&)> done)
{
    const auto probe = VIRLOConnectionQualityMonitor::sharedMonitor()->probeDownload();
    auto completed = [probe, done = std::move(done)](std::string data,
                                                     const std::optional<virlo::HTTPURLResponse>& response,
                                                     const OptionalError& error) {
        if (!error || !data.empty())
            probe->registerNumberOfBytes(data.size());
        else
            probe->registerError();
        VIRLOAdFrameworkLogger::logInfoWithFormat("Image loading completed. Response: %@, Error: %@",
                                                  response, error);
        done(std::move(data), error);
    };
    if (!url) {
        m_session->queue().async([completed = std::move(completed)] {
            completed({}, std::nullopt,
                      virlo::Error{URLSession::errorDomain,
                                   URLSession::unsupportedURL,
                                   {{"Reason", "There is no URL."}}});
        });
        return;
    }
    virlo::URLRequest request{.url = *url, .method = "GET", .headers = {}, .body = std::nullopt};
    request.cachePolicy = virlo::CachePolicy::ReloadIgnoringLocalCacheData;
    const auto task = m_session->dataTask(std::move(request), std::move(completed));
    probe->start();
    task->resume();
}

bool VIRLOAdServerApiImageDownloader::addCompletionHandlerForImageOfItem(Completion handler,
                                                                         const VIRLOAdItem& item)
{
    auto& table = m_completionHandlersForImagesBeingDownloaded;
    return table.add(table.key(item.identifier(), &item), std::move(handler));
}

std::vector<VIRLOAdServerApiImageDownloader::Completion>
VIRLOAdServerApiImageDownloader::completionHandlersForImagesOfItem(const VIRLOAdItem& item)
{
    auto& table = m_completionHandlersForImagesBeingDownloaded;
    return table.handlers(table.key(item.identifier(), &item));
}

void VIRLOAdServerApiImageDownloader::removeCompletionHandlersForImageOfItem(const VIRLOAdItem& item)
{
    auto& table = m_completionHandlersForImagesBeingDownloaded;
    table.remove(table.key(item.identifier(), &item));
}
