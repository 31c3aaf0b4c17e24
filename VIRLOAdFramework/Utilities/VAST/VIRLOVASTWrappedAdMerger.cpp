#include "VIRLOVASTWrappedAdMerger.h"

#include "StringFormat.h"
#include "VIRLOVASTCreative.h"
#include "VIRLOVASTDocumentSession.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTWrapperAd.h"
#include "VIRLOVASTXMLParser.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

VIRLOVASTWrappedAdMerger::VIRLOVASTWrappedAdMerger(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                                                   std::shared_ptr<virlo::URLSession> session)
    : m_wrapperAd(ad)
    , m_session(std::move(session))
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
    return initWithAdSession(ad, VIRLOVASTDocumentSession::sharedSession());
}

std::shared_ptr<VIRLOVASTWrappedAdMerger>
VIRLOVASTWrappedAdMerger::initWithAdSession(const std::shared_ptr<VIRLOVASTWrapperAd>& ad,
                                            std::shared_ptr<virlo::URLSession> session)
{
    return std::shared_ptr<VIRLOVASTWrappedAdMerger>(new VIRLOVASTWrappedAdMerger(ad, std::move(session)));
}

void VIRLOVASTWrappedAdMerger::retrieveAndMergeWithCompletion(Completion completion)
{
    const auto wrapper = m_wrapperAd.lock();
    const auto parser = VIRLOVASTXMLParser::initWithVASTURLSession(
        wrapper ? wrapper->VASTAdTagURL() : std::nullopt, m_session);
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
    // A list, not a set: an address that both name is told twice.
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
        // Compared by this set: two long lists must not cost their product.
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

    // The wrapper's length always wins, also the 0 of a creative that has none: players expect it.
    target.setDuration(source.duration());

    // Without a table of its own the target takes none of the wrapper's addresses: deliberate as well.
    if (!source.trackingEvents() || !target.trackingEvents())
        return;
    for (const auto& [event, urls] : *source.trackingEvents()) {
        for (const virlo::URL& url : urls)
            target.trackingEvents()->add(event, url);
    }
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
