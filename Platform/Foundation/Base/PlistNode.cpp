#include "PlistNode.h"

#include "BinaryPlistCheck.h"

namespace virlo::PlistNode
{

namespace
{

constexpr std::size_t longestData = std::size_t{16} << 20;
constexpr std::string_view binaryMagic = "bplist00";

/// The reader's own code descends once for each container within a container.
bool isBearableXML(std::string_view data)
{
    constexpr int mostContainers = 4096;
    int containers = 0;
    for (const std::string_view opening : {"<array", "<dict"}) {
        for (auto at = data.find(opening); at != std::string_view::npos; at = data.find(opening, at + 1)) {
            if (++containers > mostContainers)
                return false;
        }
    }
    return true;
}

} // namespace

Owned fromData(std::string_view data)
{
    if (data.empty() || data.size() > longestData)
        return nullptr;
    plist_t root = nullptr;
    const auto length = static_cast<std::uint32_t>(data.size());
    if (data.starts_with(binaryMagic)) {
        if (BinaryPlistCheck::isBearable(data))
            plist_from_bin(data.data(), length, &root);
    } else if (isBearableXML(data)) {
        plist_from_xml(data.data(), length, &root);
    }
    return Owned(root);
}

std::string xml(const Owned& root)
{
    char* text = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root.get(), &text, &length);
    const std::unique_ptr<char, void (*)(char*)> owned(text, plist_to_xml_free);
    return text ? std::string(text, length) : std::string();
}

std::string binary(const Owned& root)
{
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(root.get(), &bytes, &length);
    const std::unique_ptr<char, void (*)(char*)> owned(bytes, plist_to_bin_free);
    return bytes ? std::string(bytes, length) : std::string();
}

plist_t newString(const std::string& text)
{
    return plist_new_string(text.c_str());
}

std::optional<std::string> string(plist_t node)
{
    if (!PLIST_IS_STRING(node))
        return std::nullopt;
    std::uint64_t length = 0;
    const char* const text = plist_get_string_ptr(node, &length);
    return text ? std::string(text, length) : std::string();
}

std::optional<std::uint64_t> uid(plist_t node)
{
    if (!PLIST_IS_UID(node))
        return std::nullopt;
    std::uint64_t value = 0;
    plist_get_uid_val(node, &value);
    return value;
}

std::optional<double> real(plist_t node)
{
    if (!PLIST_IS_REAL(node))
        return std::nullopt;
    double value = 0;
    plist_get_real_val(node, &value);
    return value;
}

plist_t item(plist_t dictionary, const char* key)
{
    return PLIST_IS_DICT(dictionary) ? plist_dict_get_item(dictionary, key) : nullptr;
}

} // namespace virlo::PlistNode
