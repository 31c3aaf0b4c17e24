#include "VASTReader.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

namespace adserver
{

namespace
{

constexpr std::uint64_t mostSteps = 100;
constexpr std::uint64_t mostImpressions = 100;
constexpr std::uint64_t largestPicture = 16384;
constexpr std::uint64_t largestBitrate = 1'000'000;
constexpr std::uint64_t largestSequence = 4'294'967'295;
constexpr double longestVideo = 86400;

class VASTReader
{
public:
    explicit VASTReader(const std::function<void(const JSONChecker&)>& checkAddress)
        : m_checkAddress(checkAddress)
    {
    }

    [[nodiscard]] VASTDocument document(const JSONChecker& value) const
    {
        VASTDocument read;
        value.checkMembers(
            {{"version",
              [&](const auto& member) {
                  read.version = member.oneOf({"2.0", "3.0", "4.0", "4.1", "4.2"});
              }},
             {"steps", [&](const auto& member) { read.steps = wholeFromOne(member, mostSteps); }},
             {"broken", [&](const auto& member) { read.broken = member.truth(); }},
             {"ads", [&](const auto& member) {
                  member.eachElement([&](const auto& element) { read.ads.push_back(ad(element)); });
              }}});
        const bool wraps = std::any_of(read.ads.begin(), read.ads.end(),
                                       [](const auto& each) { return !each.wraps.empty(); });
        if (read.steps > 1 && !wraps)
            value.required("steps").fail("none of the document's ads wraps another document");
        return read;
    }

private:
    [[nodiscard]] static std::uint64_t wholeFromOne(const JSONChecker& value, std::uint64_t most)
    {
        const auto number = value.wholeNumber(most);
        if (number == 0)
            value.fail("must be at least 1");
        return number;
    }

    [[nodiscard]] VASTDocument::Ad ad(const JSONChecker& value) const
    {
        VASTDocument::Ad read;
        read.id = value.required("id").nonEmptyText();
        value.checkMembers(
            {{"id", [](const auto&) {}},
             {"system", [&](const auto& member) { read.system = member.text(); }},
             {"systemVersion", [&](const auto& member) { read.systemVersion = member.text(); }},
             {"title", [&](const auto& member) { read.title = member.text(); }},
             {"impressions",
              [&](const auto& member) { read.impressions = member.wholeNumber(mostImpressions); }},
             {"wraps", [&](const auto& member) { read.wraps = address(member); }},
             {"creatives", [&](const auto& member) {
                  member.eachElement(
                      [&](const auto& element) { read.creatives.push_back(creative(element)); });
              }}});
        if (!read.wraps.empty() && !read.title.empty())
            value.required("title").fail("a wrapper has no title");
        return read;
    }

    [[nodiscard]] VASTDocument::Creative creative(const JSONChecker& value) const
    {
        VASTDocument::Creative read;
        value.checkMembers(
            {{"id", [&](const auto& member) { read.id = member.nonEmptyText(); }},
             {"sequence", [&](const auto& member) { read.sequence = member.wholeNumber(largestSequence); }},
             {"duration",
              [&](const auto& member) {
                  read.duration =
                      std::chrono::milliseconds(std::llround(member.number(0, longestVideo) * 1000));
              }},
             {"events",
              [&](const auto& member) {
                  read.events.clear();
                  member.eachElement([&](const auto& event) { read.events.push_back(event.nonEmptyText()); });
              }},
             {"mediaFiles", [&](const auto& member) {
                  member.eachElement([&](const auto& file) { read.mediaFiles.push_back(mediaFile(file)); });
              }}});
        return read;
    }

    [[nodiscard]] VASTDocument::MediaFile mediaFile(const JSONChecker& value) const
    {
        VASTDocument::MediaFile read;
        read.url = address(value.required("url"));
        read.type = value.required("type").nonEmptyText();
        value.checkMembers(
            {{"url", [](const auto&) {}},
             {"type", [](const auto&) {}},
             {"delivery",
              [&](const auto& member) {
                  read.delivery = member.oneOf({"progressive", "streaming"});
              }},
             {"width", [&](const auto& member) { read.width = member.wholeNumber(largestPicture); }},
             {"height", [&](const auto& member) { read.height = member.wholeNumber(largestPicture); }},
             {"bitrate", [&](const auto& member) { read.bitrate = member.wholeNumber(largestBitrate); }}});
        return read;
    }

    [[nodiscard]] std::string address(const JSONChecker& value) const
    {
        m_checkAddress(value);
        return value.text();
    }

    const std::function<void(const JSONChecker&)>& m_checkAddress;
};

bool isDocumentName(const std::string& name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char letter) {
        return letter < 128 && (std::isalnum(letter) != 0 || letter == '-' || letter == '_');
    });
}

} // namespace

std::map<std::string, VASTDocument> readVAST(const JSONChecker& documents,
                                             const std::function<void(const JSONChecker&)>& checkAddress)
{
    const VASTReader reader(checkAddress);
    std::map<std::string, VASTDocument> read;
    documents.eachMember([&](const std::string& name, const JSONChecker& document) {
        if (!isDocumentName(name))
            document.fail("a document's name consists of letters, digits, \"-\" and \"_\"");
        read.emplace(name, reader.document(document));
    });
    return read;
}

} // namespace adserver
