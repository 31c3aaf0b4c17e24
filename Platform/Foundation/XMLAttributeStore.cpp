#include "XMLAttributeStore.h"

namespace virlo
{

XMLAttributeStore::XMLAttributeStore()
{
    m_text.reserve(128);
    m_pairs.reserve(16);
    pointIntoText();
}

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
    for (const char* const* each = attributes.pairs(); *each != nullptr; ++each) {
        m_text.append(*each).push_back('\0');
        m_pairs.push_back(nullptr);
    }
    pointIntoText();
}

void XMLAttributeStore::assign(const XMLAttributes& attributes, std::span<const char* const> names)
{
    m_text.clear();
    m_pairs.clear();
    if (*attributes.pairs() == nullptr)
        return m_pairs.push_back(nullptr);
    for (const char* const name : names) {
        if (const auto value = attributes.value(name)) {
            m_text.append(*value).push_back('\0');
            m_pairs.push_back(name);
            m_pairs.push_back(nullptr);
        }
    }
    pointIntoText();
}

// Last, since the text moves while it grows.
void XMLAttributeStore::pointIntoText()
{
    const char* next = m_text.data();
    for (const char*& each : m_pairs) {
        if (each != nullptr)
            continue;
        each = next;
        next += std::strlen(next) + 1;
    }
    m_pairs.push_back(nullptr);
}

} // namespace virlo
