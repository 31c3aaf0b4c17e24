#pragma once

#include "XMLAttributes.h"

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace virlo
{

/// Attributes kept beyond the call that they came with. Taking others keeps the room that those before had,
/// so one store serves a whole document.
class XMLAttributeStore
{
public:
    XMLAttributeStore() { assign({}); }

    XMLAttributeStore(std::initializer_list<std::pair<const char*, const char*>> attributes);
    XMLAttributeStore(const XMLAttributeStore&) = delete;
    XMLAttributeStore& operator=(const XMLAttributeStore&) = delete;

    void assign(const XMLAttributes& attributes);

    /// Holds until the next `assign`.
    [[nodiscard]] XMLAttributes attributes() const { return XMLAttributes(m_pairs.data()); }

private:
    std::string m_text;
    std::vector<const char*> m_pairs;
};

} // namespace virlo
