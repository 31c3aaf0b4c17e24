#pragma once

#include "XMLAttributes.h"

#include <cstddef>
#include <initializer_list>
#include <span>
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
    XMLAttributeStore();
    XMLAttributeStore(std::initializer_list<std::pair<const char*, const char*>> attributes);
    XMLAttributeStore(const XMLAttributeStore&) = delete;
    XMLAttributeStore& operator=(const XMLAttributeStore&) = delete;

    void assign(const XMLAttributes& attributes);
    /// Only those of the names given, which must outlive this store.
    void assign(const XMLAttributes& attributes, std::span<const char* const> names);

    /// Holds until the next `assign`.
    [[nodiscard]] XMLAttributes attributes() const { return XMLAttributes(m_pairs.data()); }

private:
    void makeRoom(std::size_t texts);

    std::vector<std::string> m_texts; ///< what `m_pairs` points to
    std::vector<const char*> m_pairs;
};

} // namespace virlo
