#pragma once

#include "XMLAttributes.h"

#include <string_view>

namespace virlo
{

/// What an XMLReader tells of a document, in its order and on the thread that reads. Names stand as in the
/// document, a prefix included; all text is UTF-8. What is handed over holds for the call alone.
class XMLReaderDelegate
{
public:
    virtual ~XMLReaderDelegate() = default;

    virtual void didStartElement(std::string_view name, const XMLAttributes& attributes) = 0;
    /// Of the element that was started last and has not ended.
    virtual void didEndElement() = 0;

    /// Whether the text that follows is wanted: asked after each start and end of an element. Text that is
    /// not wanted costs no memory, however long.
    [[nodiscard]] virtual bool wantsText() const = 0;
    /// One whole CDATA block, also an empty one.
    virtual void foundCDATA(std::string_view block) = 0;
    /// All plain text between two pieces of markup (an element's start or end, a CDATA block's, a comment, a
    /// processing instruction), references resolved.
    virtual void foundCharacters(std::string_view text) = 0;
};

} // namespace virlo
