#include "XMLAttributeStore.h"

namespace virlo
{

XMLAttributeStore::XMLAttributeStore()
{
    m_pairs.push_back(nullptr);
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
    std::size_t count = 0;
    while (attributes.pairs()[count] != nullptr)
        ++count;
    makeRoom(count);
    for (std::size_t each = 0; each < count; ++each)
        m_pairs.push_back(m_texts[each].assign(attributes.pairs()[each]).c_str());
    m_pairs.push_back(nullptr);
}

void XMLAttributeStore::assign(const XMLAttributes& attributes, std::span<const char* const> names)
{
    makeRoom(names.size());
    for (std::size_t each = 0; each < names.size(); ++each) {
        if (const auto value = attributes.value(names[each])) {
            m_pairs.push_back(names[each]);
            m_pairs.push_back(m_texts[each].assign(*value).c_str());
        }
    }
    m_pairs.push_back(nullptr);
}

// First, since texts move where their list grows.
void XMLAttributeStore::makeRoom(std::size_t texts)
{
    m_pairs.clear();
    if (m_texts.size() < texts)
        m_texts.resize(texts);
}

} // namespace virlo
