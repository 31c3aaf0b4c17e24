#pragma once

#include "VIRLOVASTAd.h"
#include "VIRLOVASTAdMergerProtocol.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class VIRLOVASTCreative;
class VIRLOVASTDocumentLoader;

/// Fetches the document behind a wrapper ad and merges the wrapper's impressions, tracking URLs and media
/// files into that document's first ad. The document's own wrappers are resolved first in the same way, so a
/// chain is followed to its end. Any thread.
class VIRLOVASTWrappedAdMerger : public VIRLOVASTAdMergerProtocol,
                                 public std::enable_shared_from_this<VIRLOVASTWrappedAdMerger>
{
public:
    using Advertisements = std::vector<std::shared_ptr<VIRLOVASTAd>>;

    /// On the session that VAST documents share; both do the same.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrappedAdMerger>
    mergerWithAd(const std::shared_ptr<VIRLOVASTWrapperAd>& ad);
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrappedAdMerger>
    initWithAd(const std::shared_ptr<VIRLOVASTWrapperAd>& ad);
    /// For a wrapper in a document that `loader` requested and that is itself behind `wrapperCount` wrappers.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrappedAdMerger>
    initWithAdLoader(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                     std::shared_ptr<VIRLOVASTDocumentLoader> loader, std::size_t wrapperCount);

    /// Null once the wrapper is gone: its parser owns it.
    [[nodiscard]] std::shared_ptr<VIRLOVASTWrapperAd> wrapperAd() const { return m_wrapperAd.lock(); }

    /// Completes on a global queue with the merged ad, or with the error of the request, of the document or
    /// of the chain behind it. Neither where the wrapper has no `VASTAdTagURL`.
    void retrieveAndMergeWithCompletion(Completion completion) override;

    /// Merges into the first ad of the list and returns it; null for an empty list. The others are dropped.
    std::shared_ptr<VIRLOVASTAd> mergeAdvertisements(const Advertisements& advertisements) const;
    void mergeWithAd(VIRLOVASTAd& ad) const;
    static void mergeCreativeWithCreative(VIRLOVASTCreative& target, const VIRLOVASTCreative& source);

    [[nodiscard]] static bool arrayContainsObjectWithSequence(const VIRLOVASTAd::Creatives& creatives,
                                                              std::uint64_t sequence);
    /// Of the first with that sequence, or -1.
    [[nodiscard]] static std::int64_t arrayIndexOfObjectWithSequence(const VIRLOVASTAd::Creatives& creatives,
                                                                     std::uint64_t sequence);

    [[nodiscard]] std::string description() const;

private:
    VIRLOVASTWrappedAdMerger(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                             std::shared_ptr<VIRLOVASTDocumentLoader> loader, std::size_t wrapperCount);

    const std::weak_ptr<VIRLOVASTWrapperAd> m_wrapperAd;
    const std::shared_ptr<VIRLOVASTDocumentLoader> m_loader;
    const std::size_t m_wrapperCount;
};
