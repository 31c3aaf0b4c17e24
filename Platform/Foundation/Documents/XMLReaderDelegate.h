#pragma once

#include "XMLAttributes.h"

#include <string_view>

namespace virlo
{

/// Receives the events of an XMLReader, in document order and on the thread that reads. Names stand as in the
/// document, a prefix included; all text is UTF-8. String views are valid for the duration of the call.
class XMLReaderDelegate
{
public:
    virtual ~XMLReaderDelegate() = default;

    virtual void didStartElement(std::string_view name, XMLAttributes attributes) = 0;
    /// Ends the innermost open element.
    virtual void didEndElement() = 0;

    /// One whole CDATA section, also an empty one.
    virtual void foundCDATA(std::string_view block) = 0;
    /// All plain text between two pieces of markup (the start or end of an element or of a CDATA section, a
    /// comment, a processing instruction), with references resolved.
    virtual void foundCharacters(std::string_view text) = 0;
};

} // namespace virlo
