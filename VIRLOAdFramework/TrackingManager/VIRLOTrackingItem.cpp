#include "VIRLOTrackingItem.h"

#include "StringFormat.h"

#include <utility>

namespace
{
constexpr const char* className = "VIRLOTrackingItem";
constexpr const char* placementKey = "placement";
constexpr const char* dateKey = "date";
} // namespace

VIRLOTrackingItem::VIRLOTrackingItem(std::string placement, virlo::Date date)
    : m_placement(std::move(placement))
    , m_date(date)
{
}

VIRLOTrackingItem VIRLOTrackingItem::initWithPlacement(std::string placement)
{
    return {std::move(placement), virlo::Clock::shared().date()};
}

std::optional<VIRLOTrackingItem>
VIRLOTrackingItem::initWithArchivedObject(const virlo::PropertyList::ArchivedObject& object)
{
    const auto placement = object.strings.find(placementKey);
    const auto date = object.dates.find(dateKey);
    if (object.className != className || placement == object.strings.end() || date == object.dates.end())
        return std::nullopt;
    return VIRLOTrackingItem(placement->second, date->second);
}

virlo::PropertyList::ArchivedObject VIRLOTrackingItem::archivedObject() const
{
    return {className, {{placementKey, m_placement}}, {{dateKey, m_date}}};
}

std::string VIRLOTrackingItem::description() const
{
    return virlo::format("<%@: %@ date=%@>", className, m_placement, m_date);
}
