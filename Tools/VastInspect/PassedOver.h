#pragma once

#include "VIRLOVASTPath.h"
#include "XMLReader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Finds out what the library ignores in a VAST document, and why. For one document.
class PassedOver : private virlo::XMLReaderDelegate
{
public:
    struct Note {
        std::string path; ///< from the root; `path@name` is an attribute
        std::string reason;
    };

    /// Further notes are dropped.
    static constexpr std::size_t maximumNotes = 200;

    PassedOver();

    /// Up to the first error of a document that is not well formed.
    [[nodiscard]] std::vector<Note> notes(std::string_view document);

private:
    using Node = VIRLOVASTPath::Node;

    void didStartElement(std::string_view name, virlo::XMLAttributes attributes) override;
    void didEndElement() override;
    void foundCDATA(std::string_view block) override;
    void foundCharacters(std::string_view text) override;

    void noteUnknown(std::string_view name);
    void noteAttributes(Node node, const virlo::XMLAttributes& attributes);
    void noteDuration(std::string_view text);
    void note(std::string reason, std::string_view attribute = {});

    virlo::XMLReader m_reader;
    VIRLOVASTPath m_path;
    std::vector<std::string> m_names; ///< of the known elements of the path, and of the first unknown one
    std::size_t m_depthBelowNames = 0;
    bool m_hasEvent = false;
    bool m_hasDuration = false;
    std::vector<Note> m_notes;
};
