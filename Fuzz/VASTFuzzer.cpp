// Reads arbitrary bytes as a VAST document and merges its wrappers into its first ad. A fault is a crash, a
// report of the sanitizers, or a merge with a wrong result.

#include "AdsReport.h"
#include "DroppedAds.h"
#include "PassedOver.h"
#include "VIRLOVASTDocumentReader.h"
#include "VIRLOVASTWrappedAdMerger.h"
#include "VIRLOVASTWrapperAd.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace
{

void check(bool holds)
{
    if (!holds)
        std::abort();
}

VIRLOVASTDocumentReader::Advertisements read(std::string_view document)
{
    VIRLOVASTDocumentReader reader;
    if (!reader.parse(document)) {
        check(reader.error().has_value());
        return {};
    }
    return reader.advertisements();
}

std::string text(const VIRLOVASTDocumentReader::Advertisements& ads)
{
    return AdsReport::ads(ads).dump(-1, ' ', false, AdsReport::JSON::error_handler_t::replace);
}

void mergeAll(const VIRLOVASTDocumentReader::Advertisements& wrappers, std::string_view document)
{
    for (const auto& each : wrappers) {
        const auto wrapper = std::dynamic_pointer_cast<VIRLOVASTWrapperAd>(each);
        if (!wrapper)
            continue;
        const auto target = read(document);
        const std::size_t before = target.front()->impressions().size();
        const auto merged =
            VIRLOVASTWrappedAdMerger::initWithAdLoader(wrapper, nullptr, 0)->mergeAdvertisements(target);
        check(merged == target.front());
        check(merged->impressions().size() == before + wrapper->impressions().size());
        check(!text(target).empty());
        if (wrappers.size() > 8)
            return; // one is as good as a thousand
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                                                             std::size_t size)
{
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    mergeAll(read(document), document);
    check(PassedOver().notes(document).size() <= PassedOver::maximumNotes);
    check(DroppedAds::notes(document, true).size() <= PassedOver::maximumNotes);
    return 0;
}
