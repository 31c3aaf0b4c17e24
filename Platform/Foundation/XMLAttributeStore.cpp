#include "XMLAttributeStore.h"

namespace virlo
{

XMLAttributeStore::XMLAttributeStore(std::initializer_list<std::pair<const char*, const char*>> attributes)
{
    std::vector<const char*> pairs;
    for (const auto& [name, value] : attributes)
        pairs.insert(pairs.end(), {name, value});
    pairs.push_back(nullptr);
    assign(XMLAttributes(pairs.data()));
}

void XMLAttributeStore::assign(const XMLAttributes& attributes)
{
    m_text.clear();
    m_pairs.clear();
    // The lengths first: the text moves while it grows.
    for (const char* const* each = attributes.pairs(); *each != nullptr; ++each) {
        m_text.append(*each).push_back('\0');
        m_pairs.push_back(*each);
    }
    const char* next = m_text.data();
    for (const char*& each : m_pairs) {
        each = next;
        next += std::strlen(next) + 1;
    }
    m_pairs.push_back(nullptr);
}

} // namespace virlo
