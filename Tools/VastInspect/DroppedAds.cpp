#include "DroppedAds.h"

#include "VIRLOVASTDocumentReader.h"
#include "VIRLOVASTWrapperAd.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace DroppedAds
{

namespace
{

bool hasTarget(const std::shared_ptr<VIRLOVASTAd>& ad)
{
    const auto* const wrapper = dynamic_cast<const VIRLOVASTWrapperAd*>(ad.get());
    return wrapper != nullptr && wrapper->VASTAdTagURL();
}

std::string pathOf(std::size_t index)
{
    return "VAST/Ad[" + std::to_string(index + 1) + ']';
}

} // namespace

std::vector<PassedOver::Note> notes(std::string_view document, bool isBehindWrapper)
{
    VIRLOVASTDocumentReader reader;
    if (!reader.parse(document) || reader.advertisements().empty())
        return {};
    const auto& ads = reader.advertisements();
    std::vector<PassedOver::Note> notes;
    const auto wrapper = std::find_if(ads.begin() + 1, ads.end(), hasTarget);
    if (wrapper != ads.end())
        notes.push_back(
            {pathOf(0), "the ad behind a wrapper always replaces the first ad of the wrapper's document: "
                        "this one is dropped if the wrapper at " +
                            pathOf(static_cast<std::size_t>(wrapper - ads.begin())) +
                            " or a later one is resolved"});
    for (std::size_t index = 1; isBehindWrapper && index < ads.size(); ++index) {
        if (notes.size() >= PassedOver::maximumNotes)
            break;
        if (!hasTarget(ads[index]))
            notes.push_back({pathOf(index),
                             "only the first ad of a document behind a wrapper is used: this one "
                             "is dropped"});
    }
    return notes;
}

} // namespace DroppedAds
