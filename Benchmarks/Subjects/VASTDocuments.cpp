#include "VASTDocuments.h"

namespace
{

constexpr const char* events[] = {"creativeView",  "start",    "firstQuartile", "midpoint",
                                  "thirdQuartile", "complete", "mute",          "unmute",
                                  "pause",         "resume",   "close",         "progress"};

std::string ad(int number, int trackings, int videos)
{
    const std::string name = std::to_string(number);
    std::string text =
        "  <Ad id=\"campaign-" + name +
        "\">\n    <InLine>\n      <AdSystem version=\"4.1\">Bench &amp; Sons</AdSystem>\n"
        "      <AdTitle><![CDATA[Video " +
        name +
        "]]></AdTitle>\n      <Error><![CDATA[https://track.example/error?code=[ERRORCODE]]]></Error>\n"
        "      <Impression id=\"i\"><![CDATA[https://track.example/impression/" +
        name + "?cb=[CACHEBUSTING]]]></Impression>\n      <Creatives>\n        <Creative AdID=\"video-" +
        name +
        "\" sequence=\"1\">\n          <Linear>\n            <Duration>00:00:30</Duration>\n"
        "            <TrackingEvents>\n";
    for (int tracking = 0; tracking < trackings; ++tracking)
        text += std::string("              <Tracking event=\"") + events[tracking % 12] +
                "\"><![CDATA[https://track.example/event/" + name + "/" + std::to_string(tracking) +
                "?session=6f1c2a90b7&placement=level-up&cb=[CACHEBUSTING]]]></Tracking>\n";
    text += "            </TrackingEvents>\n            <MediaFiles>\n";
    for (int video = 0; video < videos; ++video)
        text += "              <MediaFile id=\"" + std::to_string(video) +
                "\" delivery=\"progressive\" type=\"video/mp4\" bitrate=\"" +
                std::to_string(800 * (video + 1)) + "\" width=\"" + std::to_string(640 * (video + 1)) +
                "\" height=\"" + std::to_string(360 * (video + 1)) +
                "\" scalable=\"true\"><![CDATA[https://cdn.example/videos/" + name + "/" +
                std::to_string(video) + ".mp4]]></MediaFile>\n";
    return text + "            </MediaFiles>\n          </Linear>\n        </Creative>\n      </Creatives>\n"
                  "    </InLine>\n  </Ad>\n";
}

void add(VASTDocuments& documents, int ads, int trackings, int videos)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<VAST version=\"3.0\">\n";
    for (int number = 0; number < ads; ++number)
        text += ad(static_cast<int>(documents.texts.size()) * 1000 + number, trackings, videos);
    text += "</VAST>\n";
    documents.bytes += text.size();
    documents.records += static_cast<std::size_t>(ads * (3 + trackings + videos));
    documents.texts.push_back(std::move(text));
}

} // namespace

VASTDocuments VASTDocuments::small(int count)
{
    VASTDocuments documents;
    for (int each = 0; each < count; ++each)
        add(documents, 1, 12, 3);
    return documents;
}

VASTDocuments VASTDocuments::large()
{
    VASTDocuments documents;
    add(documents, 200, 24, 4);
    return documents;
}
