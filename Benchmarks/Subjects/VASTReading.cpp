#include "Benchmarks.h"
#include "VASTDocuments.h"

#include "VIRLOVASTCreative.h"
#include "VIRLOVASTDocumentReader.h"

#include <expat.h>

#include <stdexcept>
#include <string_view>

namespace
{

constexpr int rounds = 45;
constexpr std::size_t bytesOfARound = std::size_t{8} << 20;

std::size_t recordsOf(const std::string& document)
{
    VIRLOVASTDocumentReader reader;
    if (!reader.parse(document))
        throw std::runtime_error("a document cannot be read");
    std::size_t records = 0;
    for (const auto& ad : reader.advertisements()) {
        records += 1 + ad->impressions().size() + ad->creatives().size();
        for (const auto& creative : ad->creatives()) {
            records += creative->mediaFiles() ? creative->mediaFiles()->size() : 0;
            for (const auto& [event, urls] : creative->trackingEvents().value())
                records += urls.size();
        }
    }
    return records;
}

/// The same bytes through expat with callbacks that only count elements.
std::size_t elementsOf(const std::string& document)
{
    std::size_t elements = 0;
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &elements);
    XML_SetElementHandler(
        parser, [](void* count, const char*, const char**) { ++*static_cast<std::size_t*>(count); },
        [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    XML_SetCdataSectionHandler(
        parser, [](void*) {}, [](void*) {});
    const auto status = XML_Parse(parser, document.data(), static_cast<int>(document.size()), XML_TRUE);
    XML_ParserFree(parser);
    if (status != XML_STATUS_OK)
        throw std::runtime_error("expat refuses a document");
    return elements;
}

void measure(Results& results, const char* what, const VASTDocuments& documents)
{
    const auto passes = bytesOfARound / documents.bytes + 1;
    const double megabytes = static_cast<double>(documents.bytes * passes) / 1e6;
    const auto ours = [&] {
        return megabytes / timedOnThread([&] {
                   for (std::size_t pass = 0; pass < passes; ++pass) {
                       std::size_t records = 0;
                       for (const std::string& text : documents.texts)
                           records += recordsOf(text);
                       if (records != documents.records)
                           throw std::runtime_error("records are missing");
                   }
               });
    };
    const auto bare = [&] {
        return megabytes / timedOnThread([&] {
                   for (std::size_t pass = 0; pass < passes; ++pass) {
                       std::size_t elements = 0;
                       for (const std::string& text : documents.texts)
                           elements += elementsOf(text);
                       if (elements < documents.records)
                           throw std::runtime_error("elements are missing");
                   }
               });
    };
    const Pair rate = alternate(rounds, ours, bare);
    results.addRatio(std::string("VAST with all records, ") + what, rate.ours, rate.bare, "MB/s", 0.55,
                     false);
    // Four times what a current JavaScript reader does on the same machine.
    results.addMinimum(std::string("VAST with all records, ") + what, rate.ours, "MB/s", 80);
}

} // namespace

void benchVASTReading(Results& results)
{
    measure(results, "documents of 3 KB", VASTDocuments::small(256));
    measure(results, "a document of 1.2 MB", VASTDocuments::large());
}
