#pragma once

#include "Error.h"
#include "URL.h"
#include "VIRLOVASTAdMergerProtocol.h"
#include "VIRLOVASTDocumentReader.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

class VIRLOVASTDocumentLoader;

namespace virlo
{
class URLSession;
}

/// Fetches one VAST document, reads it on the background queue, resolves its wrappers through mergers, and
/// reports its ads once. One document per parser; it keeps itself alive until it has reported. Any thread.
///
/// Chains of wrappers have no limit and loops are not detected: that is deliberate. VIRLOVASTDocumentLoader
/// paces the requests of a chain that does not end; it goes on until the parser's owner is gone or the app
/// terminates (see VIRLOVASTDocumentSession).
class VIRLOVASTXMLParser : public std::enable_shared_from_this<VIRLOVASTXMLParser>
{
public:
    using Advertisements = VIRLOVASTDocumentReader::Advertisements;

    /// One of:
    /// - the ads, perhaps with the error of a wrapper that could not be resolved and stays in the list;
    /// - an empty list and an error of the framework's domain (`VIRLOAdFrameworkBundleIdentifier`), code 0,
    ///   whose "Reason" is "No video is available.";
    /// - no list and the error of the request (URLSession's domain, or
    ///   "com.virlohq.error.ServerRespondedWithHTTPError" with the status), of the document (XMLReader's
    ///   domain) or of the wrapper limit (the framework's domain, code `wrapperLimitReached`);
    /// - neither, where there is no URL.
    using CompletionHandler = std::function<void(std::optional<Advertisements>, const virlo::OptionalError&)>;

    static constexpr long wrapperLimitReached = 302;

    /// On the session that VAST documents share.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTXMLParser> initWithVASTURL(std::optional<virlo::URL> url);
    /// The document and those behind its wrappers are fetched over `session`.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTXMLParser>
    initWithVASTURLSession(std::optional<virlo::URL> url, std::shared_ptr<virlo::URLSession> session);
    /// For a document behind `wrapperCount` wrappers; `loader` is the one of the first document.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTXMLParser>
    initWithVASTURLLoader(std::optional<virlo::URL> url, std::shared_ptr<VIRLOVASTDocumentLoader> loader,
                          std::size_t wrapperCount);

    /// The most wrappers that are followed one after another, for all tags of the process; 0, the default, is
    /// no limit. A wrapper that exceeds it stays in the list, with the error `wrapperLimitReached`. Takes
    /// effect on documents requested from then on.
    static void setWrapperLimit(std::size_t limit);

    VIRLOVASTXMLParser(const VIRLOVASTXMLParser&) = delete;
    VIRLOVASTXMLParser& operator=(const VIRLOVASTXMLParser&) = delete;

    [[nodiscard]] const std::optional<virlo::URL>& vastURL() const noexcept { return m_vastURL; }

    // The setters: before `parse`.

    /// The default is VIRLOVASTWrappedAdMerger with this parser's loader. Mergers of another kind that make
    /// parsers of their own start anew to count documents and wrappers.
    [[nodiscard]] const VIRLOVASTAdMergerClass& mergerClass() const noexcept { return m_mergerClass; }

    void setMergerClass(VIRLOVASTAdMergerClass mergerClass) { m_mergerClass = std::move(mergerClass); }

    /// Called once, on a global queue; empty from then on.
    [[nodiscard]] CompletionHandler completionHandler() const;
    void setCompletionHandler(CompletionHandler handler);

    /// Who waits for the result. Once `owner` is gone no further document is requested and the handler gets
    /// the error `URLSession::cancelled`, at most VIRLOVASTDocumentLoader::longestPause later. Without an
    /// owner the parser goes on until it has reported.
    void setOwner(std::weak_ptr<const void> owner);

    /// Starts and returns at once. Further calls do nothing.
    void parse();

    /// A copy: empty before the document has been read, then with the wrappers resolved so far.
    [[nodiscard]] Advertisements extractedAdvertisements() const;

    [[nodiscard]] std::string description() const;

private:
    VIRLOVASTXMLParser(std::optional<virlo::URL> url, std::shared_ptr<VIRLOVASTDocumentLoader> loader,
                       std::size_t wrapperCount);

    void refuse();
    void read(const std::string& document, long status, const virlo::OptionalError& error);
    void didEndDocument(const Advertisements& advertisements);
    void didMerge(std::shared_ptr<VIRLOVASTAd> ad, const virlo::OptionalError& error);
    void reportAdvertisements();
    void parseErrorOccurred(const virlo::OptionalError& error);
    [[nodiscard]] CompletionHandler takeCompletionHandler();

    const std::optional<virlo::URL> m_vastURL;
    const std::shared_ptr<VIRLOVASTDocumentLoader> m_loader;
    const std::size_t m_wrapperCount;
    VIRLOVASTAdMergerClass m_mergerClass;
    std::atomic<bool> m_begun{false};

    mutable std::mutex m_mutex; ///< guards what follows: mergers report on several threads
    Advertisements m_advertisements;
    virlo::OptionalError m_error; ///< of the last wrapper that failed
    CompletionHandler m_completionHandler;
};
