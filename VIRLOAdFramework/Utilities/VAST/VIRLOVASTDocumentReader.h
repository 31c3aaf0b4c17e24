#pragma once

#include "VIRLOVASTAd.h"
#include "VIRLOVASTPath.h"
#include "XMLAttributeStore.h"
#include "XMLReader.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

/// Makes the records of one VAST document from its bytes as they arrive; wrappers stay as they are. Elements
/// are known by their whole path from the root, and text in one form only (see VIRLOVASTPath); everything
/// else is passed over.
///
/// Belongs to whoever reads; one thread at a time.
class VIRLOVASTDocumentReader : private virlo::XMLReaderDelegate
{
public:
    using Advertisements = std::vector<std::shared_ptr<VIRLOVASTAd>>;

    /// A document of more ads, creatives, addresses and films than this is refused, so that a small document
    /// cannot take much memory.
    static constexpr std::size_t maximumRecords = 20'000;

    VIRLOVASTDocumentReader();
    ~VIRLOVASTDocumentReader() override;

    /// As of XMLReader.
    bool read(std::string_view bytes) { return m_xmlParser.read(bytes); }

    bool finish(std::string_view lastBytes = {}) { return m_xmlParser.finish(lastBytes); }

    [[nodiscard]] const virlo::OptionalError& error() const noexcept { return m_xmlParser.error(); }

    /// In document order; whole once `finish` has said so.
    [[nodiscard]] const Advertisements& advertisements() const noexcept { return m_advertisements; }

private:
    using Node = VIRLOVASTPath::Node;

    void didStartElement(std::string_view name, const virlo::XMLAttributes& attributes) override;
    void didEndElement() override;
    [[nodiscard]] bool wantsText() const override;
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
    /// Those of the element started last, also after it has ended; kept where text may need them.
    virlo::XMLAttributeStore m_currentNodeProperties;
    std::size_t m_records = 0;
};
