#include "VASTWriter.h"

#include "Campaign.h"
#include "URLText.h"

#include <chrono>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace adserver
{

namespace
{

std::string xmlText(const std::string& text)
{
    std::string written;
    for (const char letter : text) {
        if (letter == '&')
            written += "&amp;";
        else if (letter == '<')
            written += "&lt;";
        else if (letter == '"')
            written += "&quot;";
        else
            written += letter;
    }
    return written;
}

std::string cdata(std::string text)
{
    constexpr std::string_view end = "]]>";
    constexpr std::string_view splitEnd = "]]]]><![CDATA[>";
    for (auto at = text.find(end); at != text.npos; at = text.find(end, at + splitEnd.size()))
        text.replace(at, end.size(), splitEnd);
    return "<![CDATA[" + text + "]]>";
}

std::string durationText(std::chrono::milliseconds duration)
{
    const auto seconds = duration.count() / 1000;
    std::ostringstream text;
    text << std::setfill('0') << std::setw(2) << seconds / 3600 << ':' << std::setw(2) << seconds / 60 % 60
         << ':' << std::setw(2) << seconds % 60;
    if (const auto rest = duration.count() % 1000; rest > 0)
        text << '.' << std::setw(3) << rest;
    return text.str();
}

class VASTWriter
{
public:
    VASTWriter(const VASTDocument& document, const VASTRequest& request)
        : m_document(document)
        , m_request(request)
    {
    }

    [[nodiscard]] std::string write()
    {
        m_xml = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                "\n";
        open("VAST", attribute("version", m_document.version));
        for (const auto& ad : m_document.ads)
            writeAd(ad);
        close("VAST");
        return std::move(m_xml);
    }

private:
    void writeAd(const VASTDocument::Ad& ad)
    {
        const auto id = withStep(ad.id);
        const bool wraps = !ad.wraps.empty();
        open("Ad", attribute("id", id));
        open(wraps ? "Wrapper" : "InLine");
        element("AdSystem", ad.systemVersion.empty() ? "" : attribute("version", ad.systemVersion),
                xmlText(withStep(ad.system)));
        if (wraps)
            element("VASTAdTagURI", {}, cdata(wrappedAddress(ad)));
        else
            element("AdTitle", {}, cdata(withStep(ad.title)));
        element("Error", {}, cdata(pingAddress({id, "error"}) + "&code=[ERRORCODE]"));
        for (std::uint64_t number = 1; number <= ad.impressions; ++number) {
            const auto name = number == 1 ? "impression" : "impression-" + std::to_string(number);
            element("Impression", attribute("id", name), cdata(pingAddress({id, name})));
        }
        open("Creatives");
        for (std::size_t number = 0; number < ad.creatives.size(); ++number)
            writeCreative(ad.creatives[number], id, std::to_string(number + 1));
        close("Creatives");
        close(wraps ? "Wrapper" : "InLine");
        close("Ad");
    }

    void writeCreative(const VASTDocument::Creative& creative, const std::string& adID,
                       const std::string& number)
    {
        const auto id = withStep(creative.id);
        const auto tracked = id.empty() ? number : id;
        open("Creative",
             (id.empty() ? "" : attribute("AdID", id)) +
                 (creative.sequence ? attribute("sequence", std::to_string(*creative.sequence)) : ""));
        open("Linear");
        if (creative.duration)
            element("Duration", {}, durationText(*creative.duration));
        open("TrackingEvents");
        for (const auto& event : creative.events)
            element("Tracking", attribute("event", event), cdata(pingAddress({adID, tracked, event})));
        close("TrackingEvents");
        open("VideoClicks");
        element("ClickTracking", {}, cdata(pingAddress({adID, tracked, "click"})));
        close("VideoClicks");
        if (!creative.mediaFiles.empty()) {
            open("MediaFiles");
            for (const auto& file : creative.mediaFiles)
                writeMediaFile(file);
            close("MediaFiles");
        }
        close("Linear");
        close("Creative");
    }

    void writeMediaFile(const VASTDocument::MediaFile& file)
    {
        element("MediaFile",
                attribute("delivery", file.delivery) + attribute("type", file.type) +
                    attribute("width", std::to_string(file.width)) +
                    attribute("height", std::to_string(file.height)) +
                    (file.bitrate ? attribute("bitrate", std::to_string(*file.bitrate)) : ""),
                cdata(absoluteURL(file.url, m_request.origin, campaignFilesPath)));
    }

    [[nodiscard]] std::string wrappedAddress(const VASTDocument::Ad& ad) const
    {
        if (m_request.step < m_document.steps)
            return m_request.origin + vastPath + m_request.name + '/' + std::to_string(m_request.step + 1) +
                   query();
        const auto address = absoluteURL(ad.wraps, m_request.origin, campaignFilesPath);
        // Only documents of this server know what to do with the query.
        return documentNamedBy(ad.wraps) && ad.wraps.find('?') == ad.wraps.npos ? address + query() : address;
    }

    [[nodiscard]] std::string pingAddress(std::initializer_list<std::string> segments) const
    {
        auto address = m_request.origin + pingPath + m_request.name;
        for (const auto& segment : segments)
            address += '/' + percentEncoded(segment);
        return address + query() + "&ts=[TIMESTAMP]";
    }

    [[nodiscard]] std::string query() const
    {
        const auto tx = m_request.tx.empty() ? "" : "tx=" + percentEncoded(m_request.tx) + '&';
        return '?' + tx + "cb=[CACHEBUSTING]";
    }

    [[nodiscard]] std::string withStep(std::string text) const
    {
        constexpr std::string_view mark = "{step}";
        const auto number = std::to_string(m_request.step);
        for (auto at = text.find(mark); at != text.npos; at = text.find(mark, at + number.size()))
            text.replace(at, mark.size(), number);
        return text;
    }

    [[nodiscard]] static std::string attribute(const std::string& name, const std::string& value)
    {
        return ' ' + name + "=\"" + xmlText(value) + '"';
    }

    void open(const std::string& name, const std::string& attributes = {})
    {
        line('<' + name + attributes + '>');
        ++m_depth;
    }

    void close(const std::string& name)
    {
        --m_depth;
        line("</" + name + '>');
    }

    /// `content` is XML already.
    void element(const std::string& name, const std::string& attributes, const std::string& content)
    {
        line('<' + name + attributes + '>' + content + "</" + name + '>');
    }

    void line(const std::string& text) { m_xml.append(m_depth * 2, ' ').append(text).append(1, '\n'); }

    const VASTDocument& m_document;
    const VASTRequest& m_request;
    std::string m_xml;
    std::size_t m_depth = 0;
};

} // namespace

std::string writeVAST(const VASTDocument& document, const VASTRequest& request)
{
    auto xml = VASTWriter(document, request).write();
    if (document.broken)
        xml.resize(xml.size() / 2);
    return xml;
}

} // namespace adserver
