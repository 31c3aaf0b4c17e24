#include "VIRLOVASTXMLParser.h"

#include "DispatchGroup.h"
#include "GlobalQueue.h"
#include "StringFormat.h"
#include "VIRLOConstans.h"
#include "VIRLOVASTDocumentSession.h"
#include "VIRLOVASTWrappedAdMerger.h"
#include "VIRLOVASTWrapperAd.h"

#include <utility>

using virlo::GlobalQueue;
using virlo::OptionalError;

namespace
{
// A document of common size is read in one go when it is whole; a long one while it arrives.
constexpr std::size_t readingStartsAt = std::size_t{64} << 10;
// Where the background queue lags so far behind, reading on the session's queue holds the server back.
constexpr std::size_t readingFallsBehindAt = std::size_t{1} << 20;

constexpr const char* httpErrorDomain = "com.virlohq.error.ServerRespondedWithHTTPError";
} // namespace

VIRLOVASTXMLParser::VIRLOVASTXMLParser(std::optional<virlo::URL> url,
                                       std::shared_ptr<virlo::URLSession> session)
    : m_vastURL(std::move(url))
    , m_session(std::move(session))
    , m_mergerClass([session = m_session](const std::shared_ptr<VIRLOVASTWrapperAd>& ad) {
        return VIRLOVASTWrappedAdMerger::initWithAdSession(ad, session);
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
    return std::shared_ptr<VIRLOVASTXMLParser>(new VIRLOVASTXMLParser(std::move(url), std::move(session)));
}

void VIRLOVASTXMLParser::parse()
{
    if (m_begun.exchange(true))
        return;
    if (!m_vastURL) {
        GlobalQueue::background().async(
            [self = shared_from_this()] { self->parseErrorOccurred(std::nullopt); });
        return;
    }
    m_document.emplace();
    m_session
        ->streamTask(
            virlo::URLRequest{*m_vastURL},
            [self = shared_from_this()](std::string_view piece, const auto&) { return self->take(piece); },
            [self = shared_from_this()](const std::string&, const auto& response,
                                        const OptionalError& error) { self->didFetch(response, error); })
        ->resume();
}

bool VIRLOVASTXMLParser::take(std::string_view piece)
{
    bool behind = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_refused)
            return false;
        m_pending += piece;
        behind = m_pending.size() >= readingFallsBehindAt;
        if (!behind && (m_pending.size() < readingStartsAt || std::exchange(m_readingPosted, true)))
            return true;
    }
    if (behind)
        readPending();
    else
        GlobalQueue::background().async([self = shared_from_this()] { self->readPending(); });
    return true;
}

void VIRLOVASTXMLParser::readPending()
{
    OptionalError error;
    {
        const std::lock_guard reading(m_readingMutex);
        if (!m_document || m_document->read(takePending()))
            return;
        error = m_document->error();
        const std::lock_guard lock(m_mutex);
        m_refused = true;
    }
    parseErrorOccurred(error);
}

std::string VIRLOVASTXMLParser::takePending()
{
    const std::lock_guard lock(m_mutex);
    m_readingPosted = false;
    return std::exchange(m_pending, {});
}

void VIRLOVASTXMLParser::didFetch(const std::optional<virlo::HTTPURLResponse>& response, OptionalError error)
{
    if (!error && response && response->statusCode / 100 != 2)
        error = virlo::Error{httpErrorDomain, response->statusCode, {{"URL", m_vastURL->absoluteString()}}};
    GlobalQueue::background().async(
        [self = shared_from_this(), error = std::move(error)]() mutable { self->finish(std::move(error)); });
}

void VIRLOVASTXMLParser::finish(OptionalError failure)
{
    Advertisements advertisements;
    {
        const std::lock_guard reading(m_readingMutex);
        const std::string rest = takePending();
        if (!(failure ? m_document->read(rest) : m_document->finish(rest)))
            failure = m_document->error(); // an exchange that it ended itself has another one
        advertisements = m_document->advertisements();
        m_document.reset();
    }
    if (failure)
        parseErrorOccurred(failure);
    else
        didEndDocument(advertisements);
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
        // The wrapper is kept here too: another one's result may take its place in the list before its own
        // has come.
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
    // Always the first place, wherever the wrapper stood: players show the first ad.
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
