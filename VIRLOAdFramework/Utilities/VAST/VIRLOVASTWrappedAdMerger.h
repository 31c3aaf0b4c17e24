#pragma once

#include "URLSession.h"
#include "VIRLOVASTAd.h"
#include "VIRLOVASTAdMergerProtocol.h"

#include <cstdint>
#include <string>
#include <vector>

class VIRLOVASTCreative;

/// Fetches the document behind a wrapper ad and folds the wrapper's addresses and films into that document's
/// first ad. The document's own wrappers are resolved first in the same way, so a chain is followed to its
/// end. Nothing limits a chain's length and nothing looks for loops: that is deliberate. A chain that never
/// ends holds no thread, only the records of its wrappers, until it breaks or the app terminates.
class VIRLOVASTWrappedAdMerger : public VIRLOVASTAdMergerProtocol,
                                 public std::enable_shared_from_this<VIRLOVASTWrappedAdMerger>
{
public:
    using Advertisements = std::vector<std::shared_ptr<VIRLOVASTAd>>;

    /// Over the session that VAST documents share. Both are one.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrappedAdMerger>
    mergerWithAd(const std::shared_ptr<VIRLOVASTWrapperAd>& ad);
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrappedAdMerger>
    initWithAd(const std::shared_ptr<VIRLOVASTWrapperAd>& ad);
    /// The whole chain goes over `session`.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrappedAdMerger>
    initWithAdSession(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                      std::shared_ptr<virlo::URLSession> session);

    /// On a global queue: the error of the fetch, of the document or of the chain behind it, or the merged
    /// ad. Neither where the wrapper names no document.
    void retrieveAndMergeWithCompletion(Completion completion) override;

    /// Merges into the list's first ad and returns it; null for an empty list. The others are dropped.
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
                             std::shared_ptr<virlo::URLSession> session);

    const std::weak_ptr<VIRLOVASTWrapperAd> m_wrapperAd; ///< its parser keeps it
    const std::shared_ptr<virlo::URLSession> m_session;
};
