#pragma once

#include "VIRLOVASTPath.h"
#include "XMLReader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Finds out what a reader of VAST documents passes over in one of them, and why: for whoever asks why a tag
/// shows nothing. Used once.
class PassedOver : private virlo::XMLReaderDelegate
{
public:
    struct Note {
        std::string path; ///< from the root; `path@name` is an attribute
        std::string reason;
    };

    /// Whatever is wrong with a document, so many notes say enough.
    static constexpr std::size_t maximumNotes = 200;

    PassedOver();

    /// As far as the document can be read.
    [[nodiscard]] std::vector<Note> notes(std::string_view document);

private:
    using Node = VIRLOVASTPath::Node;

    void didStartElement(std::string_view name, const virlo::XMLAttributes& attributes) override;
    void didEndElement() override;
    [[nodiscard]] bool wantsText() const override;
    void foundCDATA(std::string_view block) override;
    void foundCharacters(std::string_view text) override;

    void noteUnknown(std::string_view name);
    void noteAttributes(Node node, const virlo::XMLAttributes& attributes);
    void noteDuration(std::string_view text);
    void note(std::string reason, std::string_view attribute = {});

    virlo::XMLReader m_reader;
    VIRLOVASTPath m_path;
    std::vector<std::string> m_names; ///< of the elements of meaning, and of the first one without
    std::size_t m_depthBelowNames = 0;
    bool m_hasEvent = false;
    bool m_hasDuration = false;
    std::vector<Note> m_notes;
};
