#include "PassedOver.h"

#include "URL.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <utility>

namespace
{

using Node = VIRLOVASTPath::Node;

constexpr std::array elementNames{
    "VAST",      "Ad",       "InLine", "Wrapper",  "AdSystem",       "AdTitle",  "Impression", "VASTAdTagURI",
    "Creatives", "Creative", "Linear", "Duration", "TrackingEvents", "Tracking", "MediaFiles", "MediaFile"};

bool isSameButForCase(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char left, char right) {
        const auto lower = [](char letter) {
            return letter >= 'A' && letter <= 'Z' ? letter | 0x20 : letter;
        };
        return lower(left) == lower(right);
    });
}

/// The attributes of an element that are read.
std::span<const std::string_view> knownAttributes(Node node)
{
    static constexpr std::string_view identified[] = {"id"};
    static constexpr std::string_view creative[] = {"AdID", "sequence"};
    static constexpr std::string_view system[] = {"version"};
    static constexpr std::string_view tracking[] = {"event"};
    static constexpr std::string_view mediaFile[] = {"type", "delivery", "width", "height"};
    switch (node) {
    case Node::Ad:
    case Node::Impression:
        return identified;
    case Node::Creative:
        return creative;
    case Node::AdSystem:
        return system;
    case Node::Tracking:
        return tracking;
    case Node::MediaFile:
        return mediaFile;
    default:
        return {};
    }
}

bool isNumber(const std::string& attribute)
{
    return attribute == "sequence" || attribute == "width" || attribute == "height";
}

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

} // namespace

PassedOver::PassedOver() : m_reader(*this) {}

std::vector<PassedOver::Note> PassedOver::notes(std::string_view document)
{
    static_cast<void>(m_reader.parse(document));
    return std::move(m_notes);
}

void PassedOver::didStartElement(std::string_view name, virlo::XMLAttributes attributes)
{
    const bool wasKnown = m_path.current() != Node::Other;
    const Node node = m_path.start(name);
    if (wasKnown)
        m_names.emplace_back(name);
    else
        ++m_depthBelowNames;
    if (wasKnown && node == Node::Other)
        noteUnknown(name);
    if (node == Node::Creative)
        m_hasDuration = false;
    if (node == Node::Duration)
        m_hasDuration = true;
    if (node != Node::Other)
        noteAttributes(node, attributes);
}

void PassedOver::didEndElement()
{
    if (m_path.current() == Node::Creative && m_path.isInWrapper() && !m_hasDuration)
        note("a wrapper's creative without a Duration sets the duration of the creative that it is merged "
             "into to 0");
    m_path.end();
    if (m_depthBelowNames > 0)
        --m_depthBelowNames;
    else
        m_names.pop_back();
}

void PassedOver::foundCDATA(std::string_view block)
{
    const Node node = m_path.current();
    if (VIRLOVASTPath::takesCharacters(node))
        return note("the text is in a CDATA section; here only plain text is read");
    if (!VIRLOVASTPath::takesCDATA(node))
        return;
    if (node != Node::AdTitle && !virlo::URL::fromString(block))
        note("the text is not a URL: it is empty, or contains white space or control characters");
    else if (node == Node::Tracking && !m_hasEvent)
        note("the element has no attribute 'event'");
}

void PassedOver::foundCharacters(std::string_view text)
{
    const Node node = m_path.current();
    if (VIRLOVASTPath::takesCDATA(node) && !isBlank(text))
        note("the text is plain text; here only a CDATA section is read");
    else if (node == Node::Duration)
        noteDuration(text);
}

void PassedOver::noteUnknown(std::string_view name)
{
    for (const std::string_view known : elementNames) {
        if (known != name && isSameButForCase(known, name))
            return note("names are compared exactly: this is spelled '" + std::string(known) + "'");
    }
    const bool isMisplaced = std::find(elementNames.begin(), elementNames.end(), name) != elementNames.end();
    note(isMisplaced ? "this element is not read at this position" : "this element is not read");
}

void PassedOver::noteAttributes(Node node, const virlo::XMLAttributes& attributes)
{
    for (const auto& [name, value] : attributes) {
        for (const std::string_view known : knownAttributes(node)) {
            if (name != known && isSameButForCase(name, known))
                note("names are compared exactly: this is spelled '" + std::string(known) + "'", name);
            else if (name == known && isNumber(name) &&
                     (value.empty() || std::isdigit(static_cast<unsigned char>(value[0])) == 0))
                note("the value is not a number and counts as 0", name);
        }
    }
    if (node == Node::Creative && !virlo::valueOf(attributes, "AdID") && virlo::valueOf(attributes, "id"))
        note("a creative's identifier is read from 'AdID' only", "id");
    if (node == Node::Tracking)
        m_hasEvent = virlo::valueOf(attributes, "event").has_value();
}

void PassedOver::noteDuration(std::string_view text)
{
    const auto colons = std::count(text.begin(), text.end(), ':');
    if (colons < 2)
        note("the duration is read from the left as hours, minutes and seconds: the last parts are "
             "missing");
    else if (colons > 2)
        note("only hours, minutes and seconds of the duration are read");
    if (text.find('.') != std::string_view::npos)
        note("fractions of seconds are dropped");
}

void PassedOver::note(std::string reason, std::string_view attribute)
{
    if (m_notes.size() >= maximumNotes)
        return;
    std::string path;
    for (const std::string& name : m_names)
        path += path.empty() ? name : '/' + name;
    if (!attribute.empty())
        path += '@' + std::string(attribute);
    m_notes.push_back({std::move(path), std::move(reason)});
}
