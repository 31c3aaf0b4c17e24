#include "Inspection.h"

#include "DroppedAds.h"
#include "InspectSession.h"
#include "PassedOver.h"

#include <filesystem>
#include <future>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

namespace Inspection
{

namespace
{

struct Source {
    std::optional<virlo::URL> url;
    std::string file;
};

Source sourceOf(const std::string& text)
{
    if (text.find("://") != std::string::npos)
        return {virlo::URL::fromString(text), {}};
    std::error_code error;
    const std::string path = std::filesystem::absolute(text, error).string();
    return {virlo::URL::fromString("file://")->appendingPathComponent(error ? text : path), text};
}

struct Result {
    std::optional<VIRLOVASTXMLParser::Advertisements> ads;
    virlo::OptionalError error;
};

AdsReport::JSON list(const std::vector<PassedOver::Note>& notes)
{
    AdsReport::JSON list = AdsReport::JSON::array();
    for (const auto& note : notes)
        list.push_back({{"path", note.path}, {"reason", note.reason}});
    return list;
}

} // namespace

Outcome run(const InspectOptions& options)
{
    const Source source = sourceOf(options.source);
    const auto session = std::make_shared<InspectSession>(
        source.url.value_or(*virlo::URL::fromString("none:")), source.file, options.explains);
    const auto parser = VIRLOVASTXMLParser::initWithVASTURLSession(source.url, session);
    if (!options.merges)
        parser->setMergerClass([](const auto&) { return nullptr; });
    const auto promise = std::make_shared<std::promise<Result>>();
    parser->setCompletionHandler([promise](auto ads, const virlo::OptionalError& error) {
        promise->set_value({std::move(ads), error});
    });
    parser->parse();
    const Result result = promise->get_future().get();

    Outcome outcome;
    outcome.hasError = result.error.has_value() || !result.ads;
    outcome.report = {{"source", options.source},
                      {"error", AdsReport::error(result.error)},
                      {"ads", AdsReport::ads(result.ads)}};
    if (!options.times && !options.explains)
        return outcome;
    auto& documents = outcome.report["documents"] = AdsReport::JSON::array();
    for (const InspectSession::Hop& hop : session->hops()) {
        AdsReport::JSON document = {{"url", hop.url.absoluteString()}};
        if (options.times)
            document["milliseconds"] = hop.milliseconds;
        if (options.explains)
            document["passedOver"] = list(PassedOver().notes(hop.document));
        if (options.explains && options.merges)
            document["dropped"] = list(DroppedAds::notes(hop.document, hop.url != source.url));
        documents.push_back(std::move(document));
    }
    return outcome;
}

} // namespace Inspection
