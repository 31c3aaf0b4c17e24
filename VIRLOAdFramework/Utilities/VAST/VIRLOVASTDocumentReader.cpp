#include "VIRLOVASTDocumentReader.h"

#include "VIRLOVASTCreative.h"
#include "VIRLOVASTDuration.h"
#include "VIRLOVASTImpression.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTWrapperAd.h"

#include <string>

using virlo::URL;

namespace
{
bool takesText(VIRLOVASTPath::Node node)
{
    return VIRLOVASTPath::takesCDATA(node) || VIRLOVASTPath::takesCharacters(node);
}
} // namespace

VIRLOVASTDocumentReader::VIRLOVASTDocumentReader() : m_xmlParser(*this) {}

VIRLOVASTDocumentReader::~VIRLOVASTDocumentReader() = default;

void VIRLOVASTDocumentReader::didStartElement(std::string_view name, const virlo::XMLAttributes& attributes)
{
    const Node node = m_xmlNodeTree.start(name);
    switch (node) {
    case Node::Ad:
        m_advertisements.push_back(VIRLOVASTAd::initWithProperties(attributes));
        countRecord();
        break;
    case Node::Content:
        startContent();
        break;
    case Node::Creative:
        lastAd().creatives().push_back(VIRLOVASTCreative::initWithProperties(attributes));
        countRecord();
        break;
    default:
        break;
    }
    // Text after a child is given the child's attributes: those of the parent do not come back.
    if (takesText(m_xmlNodeTree.innermostKnown()))
        m_currentNodeProperties.assign(attributes, VIRLOVASTPath::attributes(m_xmlNodeTree.innermostKnown()));
}

void VIRLOVASTDocumentReader::startContent()
{
    if (m_xmlNodeTree.isInWrapper() && lastAd().type() != "Wrapper")
        m_advertisements.back() = VIRLOVASTWrapperAd::initWithAd(lastAd());
}

void VIRLOVASTDocumentReader::didEndElement()
{
    m_xmlNodeTree.end();
}

bool VIRLOVASTDocumentReader::wantsText() const
{
    return takesText(m_xmlNodeTree.current());
}

void VIRLOVASTDocumentReader::foundCDATA(std::string_view block)
{
    switch (m_xmlNodeTree.current()) {
    case Node::AdTitle:
        lastAd().setTitle(std::string(block));
        break;
    case Node::Impression:
        lastAd().impressions().push_back(VIRLOVASTImpression::initWithURLAndProperties(
            URL::fromString(block), m_currentNodeProperties.attributes()));
        countRecord();
        break;
    case Node::VASTAdTagURI:
        if (auto* const wrapper = dynamic_cast<VIRLOVASTWrapperAd*>(&lastAd()))
            wrapper->setVASTAdTagURL(URL::fromString(block));
        break;
    case Node::Tracking:
        addTracking(block);
        break;
    case Node::MediaFile:
        addMediaFile(block);
        break;
    default:
        break;
    }
}

void VIRLOVASTDocumentReader::foundCharacters(std::string_view text)
{
    switch (m_xmlNodeTree.current()) {
    case Node::AdSystem: {
        lastAd().setSystemName(std::string(text));
        const auto version = m_currentNodeProperties.attributes().value("version");
        lastAd().setSystemVersion(version ? std::optional<std::string>(*version) : std::nullopt);
        break;
    }
    case Node::Duration:
        lastAd().creatives().back()->setDuration(VIRLOVASTDuration::seconds(text));
        break;
    default:
        break;
    }
}

void VIRLOVASTDocumentReader::addTracking(std::string_view text)
{
    auto& events = lastAd().creatives().back()->trackingEvents();
    if (!events)
        events.emplace();
    const auto event = m_currentNodeProperties.attributes().value("event");
    auto url = URL::fromString(text);
    if (!event || !url)
        return;
    events->add(*event, std::move(*url));
    countRecord();
}

void VIRLOVASTDocumentReader::addMediaFile(std::string_view text)
{
    auto& files = lastAd().creatives().back()->mediaFiles();
    if (!files)
        files.emplace();
    files->push_back(VIRLOVASTMediaFile::initWithURLAndProperties(URL::fromString(text),
                                                                  m_currentNodeProperties.attributes()));
    countRecord();
}

void VIRLOVASTDocumentReader::countRecord()
{
    if (++m_records > maximumRecords)
        m_xmlParser.fail(virlo::XMLReader::refused, "the document holds too many ads, addresses and films");
}
