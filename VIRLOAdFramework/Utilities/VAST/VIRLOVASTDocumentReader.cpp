#include "VIRLOVASTDocumentReader.h"

#include "VIRLOVASTCreative.h"
#include "VIRLOVASTDuration.h"
#include "VIRLOVASTImpression.h"
#include "VIRLOVASTMediaFile.h"
#include "VIRLOVASTWrapperAd.h"

#include <string>
#include <utility>

using virlo::URL;

VIRLOVASTDocumentReader::VIRLOVASTDocumentReader() : m_xmlParser(*this) {}

VIRLOVASTDocumentReader::~VIRLOVASTDocumentReader() = default;

void VIRLOVASTDocumentReader::didStartElement(std::string_view name, virlo::XMLAttributes attributes)
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
    m_currentNodeProperties = std::move(attributes);
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

void VIRLOVASTDocumentReader::foundCDATA(std::string_view block)
{
    switch (m_xmlNodeTree.current()) {
    case Node::AdTitle:
        lastAd().setTitle(std::string(block));
        break;
    case Node::Impression:
        lastAd().impressions().push_back(
            VIRLOVASTImpression::initWithURLAndProperties(URL::fromString(block), m_currentNodeProperties));
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
    case Node::AdSystem:
        lastAd().setSystemName(std::string(text));
        lastAd().setSystemVersion(virlo::valueOf(m_currentNodeProperties, "version"));
        break;
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
    const auto event = virlo::valueOf(m_currentNodeProperties, "event");
    auto url = URL::fromString(text);
    if (!event || !url)
        return;
    (*events)[*event].insert(std::move(*url));
    countRecord();
}

void VIRLOVASTDocumentReader::addMediaFile(std::string_view text)
{
    auto& files = lastAd().creatives().back()->mediaFiles();
    if (!files)
        files.emplace();
    files->push_back(
        VIRLOVASTMediaFile::initWithURLAndProperties(URL::fromString(text), m_currentNodeProperties));
    countRecord();
}

void VIRLOVASTDocumentReader::countRecord()
{
    if (++m_recordCount > maximumRecords)
        m_xmlParser.fail(virlo::XMLReader::refused, "the document has too many ads, URLs and media files");
}
