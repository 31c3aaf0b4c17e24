#include "VIRLOVASTWrappedAdMerger.h"

#include "StringFormat.h"
#include "VIRLOVASTCreative.h"
#include "VIRLOVASTDocumentLoader.h"
#include "VIRLOVASTDocumentSession.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTWrapperAd.h"
#include "VIRLOVASTXMLParser.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

VIRLOVASTWrappedAdMerger::VIRLOVASTWrappedAdMerger(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                                                   std::shared_ptr<VIRLOVASTDocumentLoader> loader,
                                                   std::size_t wrapperCount)
    : m_wrapperAd(ad)
    , m_loader(std::move(loader))
    , m_wrapperCount(wrapperCount)
{
}

std::shared_ptr<VIRLOVASTWrappedAdMerger>
VIRLOVASTWrappedAdMerger::mergerWithAd(const std::shared_ptr<VIRLOVASTWrapperAd>& ad)
{
    return initWithAd(ad);
}

std::shared_ptr<VIRLOVASTWrappedAdMerger>
VIRLOVASTWrappedAdMerger::initWithAd(const std::shared_ptr<VIRLOVASTWrapperAd>& ad)
{
    return initWithAdLoader(
        ad, std::make_shared<VIRLOVASTDocumentLoader>(VIRLOVASTDocumentSession::sharedSession()), 0);
}

std::shared_ptr<VIRLOVASTWrappedAdMerger>
VIRLOVASTWrappedAdMerger::initWithAdLoader(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                                           std::shared_ptr<VIRLOVASTDocumentLoader> loader,
                                           std::size_t wrapperCount)
{
    return std::shared_ptr<VIRLOVASTWrappedAdMerger>(
        new VIRLOVASTWrappedAdMerger(ad, std::move(loader), wrapperCount));
}

void VIRLOVASTWrappedAdMerger::retrieveAndMergeWithCompletion(Completion completion)
{
    const auto wrapper = m_wrapperAd.lock();
    const auto parser = VIRLOVASTXMLParser::initWithVASTURLLoader(
        wrapper ? wrapper->VASTAdTagURL() : std::nullopt, m_loader, m_wrapperCount + 1);
    parser->setCompletionHandler(
        [self = shared_from_this(), completion = std::move(completion)](
            const std::optional<Advertisements>& ads, const virlo::OptionalError& error) {
            if (error)
                completion(nullptr, error);
            else
                completion(self->mergeAdvertisements(ads.value_or(Advertisements())), std::nullopt);
        });
    parser->parse();
}

std::shared_ptr<VIRLOVASTAd>
VIRLOVASTWrappedAdMerger::mergeAdvertisements(const Advertisements& advertisements) const
{
    if (advertisements.empty())
        return nullptr;
    mergeWithAd(*advertisements.front());
    return advertisements.front();
}

void VIRLOVASTWrappedAdMerger::mergeWithAd(VIRLOVASTAd& ad) const
{
    const auto wrapper = m_wrapperAd.lock();
    if (!wrapper)
        return;
    // A list, not a set: an impression URL that both name is requested twice.
    ad.impressions().insert(ad.impressions().end(), wrapper->impressions().begin(),
                            wrapper->impressions().end());
    for (const auto& creative : wrapper->creatives()) {
        const auto index = arrayIndexOfObjectWithSequence(ad.creatives(), creative->sequence());
        if (index >= 0)
            mergeCreativeWithCreative(*ad.creatives()[static_cast<std::size_t>(index)], *creative);
        else
            ad.creatives().push_back(creative);
    }
}

void VIRLOVASTWrappedAdMerger::mergeCreativeWithCreative(VIRLOVASTCreative& target,
                                                         const VIRLOVASTCreative& source)
{
    if (source.mediaFiles() && !source.mediaFiles()->empty()) {
        auto& files = target.mediaFiles();
        if (!files)
            files.emplace();
        // Looked up in a set, so that two long lists do not take quadratic time.
        std::set<std::string_view> known;
        for (const auto& file : *files) {
            if (file->url())
                known.insert(file->url()->absoluteString());
        }
        for (const auto& file : *source.mediaFiles()) {
            if (!file->url() || known.insert(file->url()->absoluteString()).second)
                files->push_back(file);
        }
    }

    // The wrapper's duration always replaces the target's, also the 0 of a creative without one: players
    // expect it.
    target.setDuration(source.duration());

    // A target without any tracking events takes none from the wrapper: deliberate as well.
    if (!source.trackingEvents() || !target.trackingEvents())
        return;
    for (const auto& [event, urls] : *source.trackingEvents())
        (*target.trackingEvents())[event].insert(urls.begin(), urls.end());
}

bool VIRLOVASTWrappedAdMerger::arrayContainsObjectWithSequence(const VIRLOVASTAd::Creatives& creatives,
                                                               std::uint64_t sequence)
{
    return arrayIndexOfObjectWithSequence(creatives, sequence) >= 0;
}

std::int64_t VIRLOVASTWrappedAdMerger::arrayIndexOfObjectWithSequence(const VIRLOVASTAd::Creatives& creatives,
                                                                      std::uint64_t sequence)
{
    const auto found = std::find_if(creatives.begin(), creatives.end(), [sequence](const auto& creative) {
        return creative->sequence() == sequence;
    });
    return found == creatives.end() ? -1 : found - creatives.begin();
}

std::string VIRLOVASTWrappedAdMerger::description() const
{
    return virlo::format("<VIRLOVASTWrappedAdMerger wrapperAd=%@>", m_wrapperAd.lock());
}
