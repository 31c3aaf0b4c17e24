#include "VIRLOVASTXMLParser.h"

#include "DispatchGroup.h"
#include "GlobalQueue.h"
#include "StringFormat.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOConstans.h"
#include "VIRLOVASTDocumentLoader.h"
#include "VIRLOVASTDocumentSession.h"
#include "VIRLOVASTWrappedAdMerger.h"
#include "VIRLOVASTWrapperAd.h"

#include <utility>

using virlo::GlobalQueue;
using virlo::OptionalError;

namespace
{
std::atomic<std::size_t> wrapperLimit{0};
} // namespace

VIRLOVASTXMLParser::VIRLOVASTXMLParser(std::optional<virlo::URL> url,
                                       std::shared_ptr<VIRLOVASTDocumentLoader> loader,
                                       std::size_t wrapperCount)
    : m_vastURL(std::move(url))
    , m_loader(std::move(loader))
    , m_wrapperCount(wrapperCount)
    , m_mergerClass([loader = m_loader, wrapperCount](const std::shared_ptr<VIRLOVASTWrapperAd>& ad) {
        return VIRLOVASTWrappedAdMerger::initWithAdLoader(ad, loader, wrapperCount);
    })
{
}

std::shared_ptr<VIRLOVASTXMLParser> VIRLOVASTXMLParser::initWithVASTURL(std::optional<virlo::URL> url)
{
    return initWithVASTURLSession(std::move(url), VIRLOVASTDocumentSession::sharedSession());
}

std::shared_ptr<VIRLOVASTXMLParser>
VIRLOVASTXMLParser::initWithVASTURLSession(std::optional<virlo::URL> url,
                                           std::shared_ptr<virlo::URLSession> session)
{
    return initWithVASTURLLoader(std::move(url),
                                 std::make_shared<VIRLOVASTDocumentLoader>(std::move(session)), 0);
}

std::shared_ptr<VIRLOVASTXMLParser> VIRLOVASTXMLParser::initWithVASTURLLoader(
    std::optional<virlo::URL> url, std::shared_ptr<VIRLOVASTDocumentLoader> loader, std::size_t wrapperCount)
{
    return std::shared_ptr<VIRLOVASTXMLParser>(
        new VIRLOVASTXMLParser(std::move(url), std::move(loader), wrapperCount));
}

void VIRLOVASTXMLParser::setWrapperLimit(std::size_t limit)
{
    wrapperLimit = limit;
}

void VIRLOVASTXMLParser::setOwner(std::weak_ptr<const void> owner)
{
    m_loader->setOwner(std::move(owner));
}

void VIRLOVASTXMLParser::parse()
{
    if (m_begun.exchange(true))
        return;
    const auto self = shared_from_this();
    const std::size_t limit = wrapperLimit;
    if (!m_vastURL || (limit > 0 && m_wrapperCount > limit))
        return GlobalQueue::background().async([self] { self->refuse(); });
    m_loader->load(*m_vastURL,
                   [self](std::string document, const auto& response, const OptionalError& error) {
                       GlobalQueue::background().async([self, document = std::move(document),
                                                        status = response ? response->statusCode : 0,
                                                        error] { self->read(document, status, error); });
                   });
}

void VIRLOVASTXMLParser::refuse()
{
    if (!m_vastURL)
        return parseErrorOccurred(std::nullopt);
    parseErrorOccurred(
        virlo::Error{VIRLOAdFrameworkBundleIdentifier,
                     wrapperLimitReached,
                     {{"Reason", "The wrapper limit is reached."}, {"URL", m_vastURL->absoluteString()}}});
}

void VIRLOVASTXMLParser::read(const std::string& document, long status, const OptionalError& error)
{
    if (error)
        return parseErrorOccurred(error);
    if (status / 100 != 2)
        return parseErrorOccurred(
            virlo::Error{VIRLOAdServerAPI::httpErrorDomain, status, {{"URL", m_vastURL->absoluteString()}}});
    VIRLOVASTDocumentReader reader;
    if (!reader.parse(document))
        return parseErrorOccurred(reader.error());
    if (!m_loader->addRecords(reader.recordCount()))
        return parseErrorOccurred(
            virlo::Error{virlo::XMLReader::errorDomain,
                         virlo::XMLReader::refused,
                         {{"Reason", "the documents of the tag have too many ads, URLs and media files"}}});
    didEndDocument(reader.advertisements());
}

void VIRLOVASTXMLParser::didEndDocument(const Advertisements& advertisements)
{
    {
        const std::lock_guard lock(m_mutex);
        m_advertisements = advertisements;
    }

    virlo::DispatchGroup group;
    for (const auto& ad : advertisements) {
        auto wrapper = std::dynamic_pointer_cast<VIRLOVASTWrapperAd>(ad);
        const auto merger = wrapper ? m_mergerClass(wrapper) : nullptr;
        if (!merger)
            continue;
        group.enter();
        // Keeps the wrapper too: the result of another one may replace it in the list before its own arrives.
        merger->retrieveAndMergeWithCompletion(
            [self = shared_from_this(), group, wrapper = std::move(wrapper)](
                std::shared_ptr<VIRLOVASTAd> merged, const OptionalError& error) mutable {
                self->didMerge(std::move(merged), error);
                group.leave();
            });
    }
    group.notify(GlobalQueue::high(), [self = shared_from_this()] { self->reportAdvertisements(); });
}

void VIRLOVASTXMLParser::didMerge(std::shared_ptr<VIRLOVASTAd> ad, const OptionalError& error)
{
    const std::lock_guard lock(m_mutex);
    if (error)
        m_error = error;
    // Always the first ad, whichever the wrapper was: players show the first ad.
    if (ad && !m_advertisements.empty())
        m_advertisements.front() = std::move(ad);
}

void VIRLOVASTXMLParser::reportAdvertisements()
{
    const auto handler = takeCompletionHandler();
    Advertisements advertisements;
    OptionalError error;
    {
        const std::lock_guard lock(m_mutex);
        if (m_advertisements.empty())
            m_error =
                virlo::Error{VIRLOAdFrameworkBundleIdentifier, 0, {{"Reason", "No video is available."}}};
        advertisements = m_advertisements;
        error = m_error;
    }
    if (handler)
        handler(std::move(advertisements), error);
}

void VIRLOVASTXMLParser::parseErrorOccurred(const OptionalError& error)
{
    if (const auto handler = takeCompletionHandler())
        handler(std::nullopt, error);
}

VIRLOVASTXMLParser::CompletionHandler VIRLOVASTXMLParser::completionHandler() const
{
    const std::lock_guard lock(m_mutex);
    return m_completionHandler;
}

void VIRLOVASTXMLParser::setCompletionHandler(CompletionHandler handler)
{
    const std::lock_guard lock(m_mutex);
    m_completionHandler = std::move(handler);
}

VIRLOVASTXMLParser::CompletionHandler VIRLOVASTXMLParser::takeCompletionHandler()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_completionHandler, nullptr);
}

VIRLOVASTXMLParser::Advertisements VIRLOVASTXMLParser::extractedAdvertisements() const
{
    const std::lock_guard lock(m_mutex);
    return m_advertisements;
}

std::string VIRLOVASTXMLParser::description() const
{
    return virlo::format("<VIRLOVASTXMLParser contentURL: %@>", m_vastURL);
}
