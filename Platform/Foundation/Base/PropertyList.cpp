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

plist_t newDate(Date date)
{
    constexpr double last = std::numeric_limits<std::int32_t>::max();
    const double seconds = std::clamp(std::floor(ReferenceDate::secondsFromDate(date)), -last, last);
    return plist_new_date(static_cast<std::int32_t>(seconds), 0);
}

} // namespace

std::string PropertyList::xmlFromDates(const std::map<std::string, Date>& dates)
{
    const PlistNode::Owned root(plist_new_dict());
    for (const auto& [key, date] : dates)
        plist_dict_set_item(root.get(), key.c_str(), newDate(date));
    return PlistNode::xml(root);
}

std::optional<std::map<std::string, Date>> PropertyList::datesFromData(std::string_view data)
{
    const auto root = PlistNode::fromData(data);
    if (!root || !PLIST_IS_DICT(root.get()))
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
        dates[key] = ReferenceDate::dateFromSeconds(seconds) + std::chrono::microseconds(microseconds);
    }
}

} // namespace virlo
