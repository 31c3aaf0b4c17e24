#include "AdsReport.h"

#include "VIRLOVASTCreative.h"
#include "VIRLOVASTImpression.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTWrapperAd.h"

namespace AdsReport
{

namespace
{

JSON text(const std::optional<std::string>& text)
{
    return text ? JSON(*text) : JSON();
}

JSON urlText(const std::optional<virlo::URL>& url)
{
    return url ? JSON(url->absoluteString()) : JSON();
}

JSON trackingEvents(const std::optional<VIRLOVASTCreative::TrackingEvents>& events)
{
    if (!events)
        return nullptr;
    JSON result = JSON::object();
    for (const auto& [event, urls] : *events) {
        for (const virlo::URL& url : urls)
            result[event].push_back(url.absoluteString());
    }
    return result;
}

JSON mediaFiles(const std::optional<VIRLOVASTCreative::MediaFiles>& files)
{
    if (!files)
        return nullptr;
    JSON result = JSON::array();
    for (const auto& file : *files) {
        result.push_back({{"url", urlText(file->url())},
                          {"type", text(file->type())},
                          {"delivery", text(file->delivery())},
                          {"width", file->width()},
                          {"height", file->height()},
                          {"qualityRating", file->qualityRating()}});
    }
    return result;
}

JSON ad(const VIRLOVASTAd& ad)
{
    const auto* const wrapper = dynamic_cast<const VIRLOVASTWrapperAd*>(&ad);
    JSON result = {{"class", wrapper != nullptr ? "VIRLOVASTWrapperAd" : "VIRLOVASTAd"},
                   {"identifier", text(ad.identifier())},
                   {"type", ad.type()},
                   {"title", text(ad.title())},
                   {"systemName", text(ad.systemName())},
                   {"systemVersion", text(ad.systemVersion())}};
    if (wrapper != nullptr)
        result["VASTAdTagURL"] = urlText(wrapper->VASTAdTagURL());
    JSON& impressions = result["impressions"] = JSON::array();
    for (const auto& impression : ad.impressions())
        impressions.push_back(
            {{"identifier", text(impression->identifier())}, {"url", urlText(impression->url())}});
    JSON& creatives = result["creatives"] = JSON::array();
    for (const auto& creative : ad.creatives()) {
        creatives.push_back({{"identifier", text(creative->identifier())},
                             {"sequence", creative->sequence()},
                             {"duration", creative->duration()},
                             {"trackingEvents", trackingEvents(creative->trackingEvents())},
                             {"mediaFiles", mediaFiles(creative->mediaFiles())}});
    }
    return result;
}

} // namespace

JSON ads(const std::optional<VIRLOVASTXMLParser::Advertisements>& ads)
{
    if (!ads)
        return nullptr;
    JSON result = JSON::array();
    for (const auto& each : *ads)
        result.push_back(ad(*each));
    return result;
}

JSON error(const virlo::OptionalError& error)
{
    if (!error)
        return nullptr;
    return {{"domain", error->domain}, {"code", error->code}, {"userInfo", JSON(error->userInfo)}};
}

} // namespace AdsReport
