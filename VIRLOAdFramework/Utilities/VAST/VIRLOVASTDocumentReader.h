#pragma once

#include "VIRLOVASTAd.h"
#include "VIRLOVASTPath.h"
#include "XMLReader.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

/// Makes the records of one VAST document; wrappers are not resolved. Elements are recognised by their whole
/// path from the root, and the text of each is read in one form only (see VIRLOVASTPath); everything else is
/// ignored.
///
/// One document per reader; one thread at a time.
class VIRLOVASTDocumentReader : private virlo::XMLReaderDelegate
{
public:
    using Advertisements = std::vector<std::shared_ptr<VIRLOVASTAd>>;

    /// A document with more ads, impressions, creatives, tracking URLs and media files is refused, so that a
    /// small document cannot take much memory.
    static constexpr std::size_t maximumRecords = 20'000;

    VIRLOVASTDocumentReader();
    ~VIRLOVASTDocumentReader() override;

    /// False where the document is not well formed or exceeds a limit: see `error`.
    [[nodiscard]] bool parse(std::string_view document) { return m_xmlParser.parse(document); }

    /// An error of XMLReader's domain.
    [[nodiscard]] const virlo::OptionalError& error() const noexcept { return m_xmlParser.error(); }

    /// In document order; complete where `parse` returned true.
    [[nodiscard]] const Advertisements& advertisements() const noexcept { return m_advertisements; }

    /// The number of ads, impressions, creatives, tracking URLs and media files.
    [[nodiscard]] std::size_t recordCount() const noexcept { return m_recordCount; }

private:
    using Node = VIRLOVASTPath::Node;

    void didStartElement(std::string_view name, virlo::XMLAttributes attributes) override;
    void didEndElement() override;
    void foundCDATA(std::string_view block) override;
    void foundCharacters(std::string_view text) override;

    [[nodiscard]] VIRLOVASTAd& lastAd() const { return *m_advertisements.back(); }

    void startContent();
    void addTracking(std::string_view text);
    void addMediaFile(std::string_view text);
    void countRecord();

    virlo::XMLReader m_xmlParser;
    Advertisements m_advertisements;
    VIRLOVASTPath m_xmlNodeTree;
    /// Of the element started last. Those of the parent do not come back when a child ends: deliberate.
    virlo::XMLAttributes m_currentNodeProperties;
    std::size_t m_recordCount = 0;
};
