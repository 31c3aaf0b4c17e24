#include "PassedOver.h"

#include "URL.h"

#include <algorithm>
#include <array>
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
    m_reader.finish(document);
    return std::move(m_notes);
}

void PassedOver::didStartElement(std::string_view name, const virlo::XMLAttributes& attributes)
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
        note("a wrapper's creative without a Duration makes the length 0 of the creative that it is merged "
             "with");
    m_path.end();
    if (m_depthBelowNames > 0)
        --m_depthBelowNames;
    else
        m_names.pop_back();
}

bool PassedOver::wantsText() const
{
    return VIRLOVASTPath::takesCDATA(m_path.current()) || VIRLOVASTPath::takesCharacters(m_path.current());
}

void PassedOver::foundCDATA(std::string_view block)
{
    const Node node = m_path.current();
    if (VIRLOVASTPath::takesCharacters(node))
        note("the text stands in a CDATA section; here it is read from plain text only");
    else if (node != Node::AdTitle && !virlo::URL::fromString(block))
        note("the text makes no URL: it is empty, or holds white space or control characters");
    else if (node == Node::Tracking && !m_hasEvent)
        note("the element has no attribute 'event'");
}

void PassedOver::foundCharacters(std::string_view text)
{
    const Node node = m_path.current();
    if (VIRLOVASTPath::takesCDATA(node) && !isBlank(text))
        note("the text stands as plain text; here it is read from a CDATA section only");
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
    note(isMisplaced ? "this element is not read at this place" : "this element is not read");
}

void PassedOver::noteAttributes(Node node, const virlo::XMLAttributes& attributes)
{
    const auto expected = VIRLOVASTPath::attributes(node);
    for (const char* const* pair = attributes.pairs(); *pair != nullptr; pair += 2) {
        const std::string name = pair[0];
        for (const char* const known : expected) {
            if (name != known && isSameButForCase(name, known))
                note("names are compared exactly: this is spelled '" + std::string(known) + "'", name);
            else if (name == known && isNumber(name) &&
                     std::string_view("0123456789").find(*pair[1]) == std::string_view::npos)
                note("the value is no number and counts 0", name);
        }
    }
    if (node == Node::Creative && !attributes.value("AdID") && attributes.value("id"))
        note("a creative's identifier is read from 'AdID' only", "id");
    if (node == Node::Tracking)
        m_hasEvent = attributes.value("event").has_value();
}

void PassedOver::noteDuration(std::string_view text)
{
    const auto colons = std::count(text.begin(), text.end(), ':');
    if (colons < 2)
        note("the length is read as hours, minutes and seconds from the left: this one lacks parts at its "
             "end");
    else if (colons > 2)
        note("of the length only hours, minutes and seconds are read");
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
