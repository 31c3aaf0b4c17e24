#include "BinaryPlistCheck.h"

#include <cstdint>
#include <map>
#include <optional>

namespace virlo::BinaryPlistCheck
{

namespace
{

constexpr int deepest = 32;
constexpr std::uint64_t mostObjects = 1'000'000;

/// The object table as the format lays it out: a trailer of 32 bytes says how wide offsets and references
/// are, how many objects there are, which is the root and where the offsets stand. All numbers are
/// big-endian.
class Table
{
public:
    static std::optional<Table> ofData(std::string_view data)
    {
        constexpr std::size_t trailerSize = 32;
        constexpr std::size_t headerSize = 8;
        if (data.size() < headerSize + trailerSize)
            return std::nullopt;
        const std::size_t trailer = data.size() - trailerSize;
        Table table(data);
        table.m_offsetSize = static_cast<unsigned char>(data[trailer + 6]);
        table.m_referenceSize = static_cast<unsigned char>(data[trailer + 7]);
        const bool widthsFit = table.m_offsetSize >= 1 && table.m_offsetSize <= 8 &&
                               table.m_referenceSize >= 1 && table.m_referenceSize <= 8;
        const auto count = table.number(trailer + 8, 8);
        const auto root = table.number(trailer + 16, 8);
        const auto offsets = table.number(trailer + 24, 8);
        if (!widthsFit || !count || !root || !offsets || *offsets > trailer || *root >= *count ||
            *count > (trailer - *offsets) / table.m_offsetSize)
            return std::nullopt;
        table.m_count = *count;
        table.m_root = *root;
        table.m_offsets = *offsets;
        return table;
    }

    [[nodiscard]] std::uint64_t root() const { return m_root; }

    /// Calls `visit` with each object that `object` refers to; false where anything lies outside the data.
    template <typename Visit>
    [[nodiscard]] bool visitChildren(std::uint64_t object, Visit visit) const
    {
        const auto offset = number(m_offsets + object * m_offsetSize, m_offsetSize);
        const auto marker = offset ? number(*offset, 1) : std::nullopt;
        if (!marker)
            return false;
        const auto kind = *marker >> 4;
        constexpr std::uint64_t array = 0xA;
        constexpr std::uint64_t orderedSet = 0xB;
        constexpr std::uint64_t set = 0xC;
        constexpr std::uint64_t dictionary = 0xD;
        if (kind != array && kind != orderedSet && kind != set && kind != dictionary)
            return true;
        std::uint64_t place = *offset + 1;
        auto length = std::optional(*marker & 0x0F);
        if (length == 0x0F) { // a longer one follows as an integer object
            const auto size = number(place, 1);
            if (!size || (*size >> 4) != 1 || (*size & 0x0F) > 3)
                return false;
            const auto width = std::uint64_t{1} << (*size & 0x0F);
            length = number(place + 1, width);
            place += 1 + width;
        }
        if (!length || *length > m_data.size())
            return false;
        const auto references = kind == dictionary ? *length * 2 : *length;
        for (std::uint64_t index = 0; index < references; ++index) {
            const auto child = number(place + index * m_referenceSize, m_referenceSize);
            if (!child || *child >= m_count)
                return false;
            visit(*child);
        }
        return true;
    }

private:
    explicit Table(std::string_view data) : m_data(data) {}

    [[nodiscard]] std::optional<std::uint64_t> number(std::uint64_t place, std::uint64_t width) const
    {
        if (place > m_data.size() || width > m_data.size() - place)
            return std::nullopt;
        std::uint64_t value = 0;
        for (std::uint64_t index = 0; index < width; ++index)
            value = value << 8 | static_cast<unsigned char>(m_data[place + index]);
        return value;
    }

    std::string_view m_data;
    std::uint64_t m_offsetSize = 0;
    std::uint64_t m_referenceSize = 0;
    std::uint64_t m_count = 0;
    std::uint64_t m_root = 0;
    std::uint64_t m_offsets = 0;
};

} // namespace

bool isBearable(std::string_view data)
{
    const auto table = Table::ofData(data);
    if (!table)
        return false;
    // One level of nesting after another, each object with the number of times that it comes on that level.
    std::uint64_t total = 1;
    std::map<std::uint64_t, std::uint64_t> level{{table->root(), 1}};
    for (int depth = 0; !level.empty(); ++depth) {
        if (depth > deepest)
            return false;
        std::map<std::uint64_t, std::uint64_t> next;
        for (const auto& [object, times] : level) {
            const bool inside = table->visitChildren(object, [&, times = times](std::uint64_t child) {
                if (total <= mostObjects) {
                    total += times;
                    next[child] += times;
                }
            });
            if (!inside || total > mostObjects)
                return false;
        }
        level.swap(next);
    }
    return true;
}

} // namespace virlo::BinaryPlistCheck
