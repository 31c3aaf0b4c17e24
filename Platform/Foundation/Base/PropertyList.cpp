#include "PropertyList.h"

#include "PlistNode.h"
#include "ReferenceDate.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace virlo
{

namespace
{

constexpr std::size_t longestText = std::size_t{16} << 20;

plist_t newDate(Date date)
{
    constexpr double last = std::numeric_limits<std::int32_t>::max();
    const double seconds = std::clamp(std::floor(ReferenceDate::secondsFromDate(date)), -last, last);
    return plist_new_date(static_cast<std::int32_t>(seconds), 0);
}

/// libplist's parser calls itself once for each level of nesting.
bool hasFewContainers(std::string_view xml)
{
    constexpr int mostContainers = 4096;
    int containers = 0;
    for (const std::string_view opening : {"<array", "<dict"}) {
        for (auto at = xml.find(opening); at != std::string_view::npos; at = xml.find(opening, at + 1)) {
            if (++containers > mostContainers)
                return false;
        }
    }
    return true;
}

} // namespace

std::string PropertyList::xmlFromDates(const std::map<std::string, Date>& dates)
{
    const PlistNode root(plist_new_dict());
    for (const auto& [key, date] : dates)
        plist_dict_set_item(root.get(), key.c_str(), newDate(date));
    char* text = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root.get(), &text, &length);
    const std::unique_ptr<char, void (*)(char*)> owned(text, plist_to_xml_free);
    return text ? std::string(text, length) : std::string();
}

std::optional<std::map<std::string, Date>> PropertyList::datesFromXML(std::string_view xml)
{
    if (xml.empty() || xml.size() > longestText || !hasFewContainers(xml))
        return std::nullopt;
    plist_t parsed = nullptr;
    plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &parsed);
    const PlistNode root(parsed);
    if (!PLIST_IS_DICT(root.get()))
        return std::nullopt;
    plist_dict_iter started = nullptr;
    plist_dict_new_iter(root.get(), &started);
    const std::unique_ptr<void, void (*)(void*)> iterator(started, std::free);
    std::map<std::string, Date> dates;
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(root.get(), iterator.get(), &key, &value);
        const std::unique_ptr<char, void (*)(void*)> ownedKey(key, std::free);
        if (!value)
            return dates;
        if (!key || !PLIST_IS_DATE(value))
            continue;
        std::int32_t seconds = 0;
        std::int32_t microseconds = 0;
        plist_get_date_val(value, &seconds, &microseconds);
        dates[key] = ReferenceDate::dateFromSeconds(seconds);
    }
}

} // namespace virlo
