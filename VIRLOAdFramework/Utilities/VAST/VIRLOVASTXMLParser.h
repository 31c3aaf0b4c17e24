#pragma once

#include "Error.h"
#include "URL.h"
#include "URLSession.h"
#include "VIRLOVASTAdMergerProtocol.h"
#include "VIRLOVASTDocumentReader.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Fetches one VAST document, reads it as it arrives, resolves its wrappers through mergers, and reports its
/// ads once. Made for one document; the exchange keeps it alive until it has reported. There is no
/// cancelling: chains end when the app terminates (see VIRLOVASTDocumentSession). Any thread.
class VIRLOVASTXMLParser : public std::enable_shared_from_this<VIRLOVASTXMLParser>
{
public:
    using Advertisements = VIRLOVASTDocumentReader::Advertisements;

    /// One of:
    /// - the ads, perhaps beside the error of a wrapper that could not be resolved and stays in the list;
    /// - an empty list and an error of the framework's domain (`VIRLOAdFrameworkBundleIdentifier`), code 0,
    ///   whose "Reason" is "No video is available.";
    /// - no list and the error of the exchange (of URLSession's domain, or
    ///   "com.virlohq.error.ServerRespondedWithHTTPError" with the status) or of the document (of
    ///   XMLReader's);
    /// - neither, where there is no URL.
    using CompletionHandler = std::function<void(std::optional<Advertisements>, const virlo::OptionalError&)>;

    /// Over the session that VAST documents share.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTXMLParser> initWithVASTURL(std::optional<virlo::URL> url);
    /// The document and those behind its wrappers are fetched over `session`.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTXMLParser>
    initWithVASTURLSession(std::optional<virlo::URL> url, std::shared_ptr<virlo::URLSession> session);

    VIRLOVASTXMLParser(const VIRLOVASTXMLParser&) = delete;
    VIRLOVASTXMLParser& operator=(const VIRLOVASTXMLParser&) = delete;

    [[nodiscard]] const std::optional<virlo::URL>& vastURL() const noexcept { return m_vastURL; }

    /// Both before `parse`. The default merger is VIRLOVASTWrappedAdMerger on this parser's session.
    void setMergerClass(VIRLOVASTAdMergerClass mergerClass) { m_mergerClass = std::move(mergerClass); }

    /// Called once, on a global queue.
    void setCompletionHandler(CompletionHandler handler) { m_completionHandler = std::move(handler); }

    /// Starts and returns at once. What comes after the first call does nothing.
    void parse();

    /// A copy: none before the document's end, from there on with the wrappers resolved so far.
    [[nodiscard]] Advertisements extractedAdvertisements() const;

    [[nodiscard]] std::string description() const;

private:
    VIRLOVASTXMLParser(std::optional<virlo::URL> url, std::shared_ptr<virlo::URLSession> session);

    [[nodiscard]] bool take(std::string_view piece);
    void readPending();
    [[nodiscard]] std::string takePending();
    void didFetch(const std::optional<virlo::HTTPURLResponse>& response, virlo::OptionalError error);
    void finish(virlo::OptionalError failure);
    void didEndDocument(const Advertisements& advertisements);
    void didMerge(std::shared_ptr<VIRLOVASTAd> ad, const virlo::OptionalError& error);
    void reportAdvertisements();
    void parseErrorOccurred(const virlo::OptionalError& error);
    [[nodiscard]] CompletionHandler takeCompletionHandler();

    const std::optional<virlo::URL> m_vastURL;
    const std::shared_ptr<virlo::URLSession> m_session;
    VIRLOVASTAdMergerClass m_mergerClass;
    std::atomic<bool> m_begun{false};

    std::mutex m_readingMutex; ///< held while bytes are read, so that they are read in order
    std::optional<VIRLOVASTDocumentReader> m_document; ///< until the document's end

    mutable std::mutex m_mutex; ///< what follows; taken after the other
    std::string m_pending;
    bool m_readingPosted = false;
    bool m_refused = false;
    Advertisements m_advertisements;
    virlo::OptionalError m_error; ///< the last wrapper's that failed
    CompletionHandler m_completionHandler;
};
