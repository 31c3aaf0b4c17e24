#include "Inspection.h"

#include "DroppedAds.h"
#include "InspectSession.h"
#include "PassedOver.h"

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
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

/// The first outcome: the parser's, or that of the limit.
class Result
{
public:
    using Ads = std::optional<VIRLOVASTXMLParser::Advertisements>;

    void set(Ads ads, virlo::OptionalError error)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_value)
            m_value.emplace(std::move(ads), std::move(error));
        m_changed.notify_one();
    }

    std::pair<Ads, virlo::OptionalError> wait()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_value.has_value(); });
        return *m_value;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<std::pair<Ads, virlo::OptionalError>> m_value;
};

virlo::Error limitError(std::size_t limit)
{
    return {"com.virlohq.vast-inspect",
            1,
            {{"Reason", "Stopped after " + std::to_string(limit) +
                            " documents: the wrappers may lead back to themselves. --limit N allows more."}}};
}

AdsReport::JSON notesToJSON(const std::vector<PassedOver::Note>& notes)
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
    const auto result = std::make_shared<Result>();
    const auto session = std::make_shared<InspectSession>(
        source.url.value_or(*virlo::URL::fromString("none:")), source.file, options,
        [result, limit = options.limit] { result->set(std::nullopt, limitError(limit)); });
    const auto parser = VIRLOVASTXMLParser::initWithVASTURLSession(source.url, session);
    if (!options.merges)
        parser->setMergerClass([](const auto&) { return nullptr; });
    parser->setCompletionHandler(
        [result](auto ads, const virlo::OptionalError& error) { result->set(std::move(ads), error); });
    parser->parse();
    const auto [ads, error] = result->wait();

    Outcome outcome;
    outcome.hasError = error || !ads;
    outcome.report = {
        {"source", options.source}, {"error", AdsReport::error(error)}, {"ads", AdsReport::ads(ads)}};
    if (!options.times && !options.explains)
        return outcome;
    auto& documents = outcome.report["documents"] = AdsReport::JSON::array();
    for (const InspectSession::Document& loaded : session->documents()) {
        AdsReport::JSON document = {{"url", loaded.url.absoluteString()}};
        if (options.times)
            document["milliseconds"] = loaded.milliseconds;
        if (options.explains)
            document["passedOver"] = notesToJSON(PassedOver().notes(loaded.text));
        if (options.explains && options.merges)
            document["dropped"] = notesToJSON(DroppedAds::notes(loaded.text, loaded.url != source.url));
        documents.push_back(std::move(document));
    }
    return outcome;
}

} // namespace Inspection
