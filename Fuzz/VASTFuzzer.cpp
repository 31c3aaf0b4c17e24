// Reads arbitrary bytes as VAST documents, in pieces of a size that they choose, and merges every wrapper
// with every other ad. A fault is a crash, a report of the sanitizers, or an answer that depends on the
// pieces.

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

struct Reading {
    bool isWhole = false;
    VIRLOVASTDocumentReader::Advertisements ads;
};

Reading read(std::string_view document, std::size_t piece)
{
    VIRLOVASTDocumentReader reader;
    for (; document.size() > piece; document.remove_prefix(piece)) {
        if (!reader.read(document.substr(0, piece)))
            return {};
    }
    if (!reader.finish(document))
        return {};
    return {true, reader.advertisements()};
}

std::string text(const VIRLOVASTDocumentReader::Advertisements& ads)
{
    return AdsReport::ads(ads).dump(-1, ' ', false, AdsReport::JSON::error_handler_t::replace);
}

void check(bool holds)
{
    if (!holds)
        std::abort();
}

void mergeAll(const VIRLOVASTDocumentReader::Advertisements& wrappers, std::string_view document)
{
    for (const auto& each : wrappers) {
        const auto wrapper = std::dynamic_pointer_cast<VIRLOVASTWrapperAd>(each);
        if (!wrapper)
            continue;
        const Reading target = read(document, document.size());
        const std::size_t before = target.ads.front()->impressions().size();
        const auto merged =
            VIRLOVASTWrappedAdMerger::initWithAdSession(wrapper, nullptr)->mergeAdvertisements(target.ads);
        check(merged == target.ads.front());
        check(merged->impressions().size() == before + wrapper->impressions().size());
        check(!text(target.ads).empty());
        if (wrappers.size() > 8)
            return; // one is as good as a thousand
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                                                             std::size_t size)
{
    if (size < 2)
        return 0;
    const std::size_t piece = data[0] % 64U + 1U;
    const std::string_view document(reinterpret_cast<const char*>(data) + 1, size - 1);
    const Reading whole = read(document, document.size());
    const Reading pieces = read(document, piece);
    check(whole.isWhole == pieces.isWhole);
    check(text(whole.ads) == text(pieces.ads));
    mergeAll(whole.ads, document);
    check(PassedOver().notes(document).size() <= PassedOver::maximumNotes);
    check(DroppedAds::notes(document, true).size() <= PassedOver::maximumNotes);
    return 0;
}
