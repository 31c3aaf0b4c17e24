#include "VIRLOTrackingItem.h"

#include "StringFormat.h"

#include <utility>

namespace
{
constexpr const char* className = "VIRLOTrackingItem";
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

virlo::KeyedArchive::Object VIRLOTrackingItem::archivedObject() const
{
    return {className, {{"placement", m_placement}}, {{"date", m_date}}};
}

std::string VIRLOTrackingItem::description() const
{
    return virlo::format("<%@: %@ date=%@>", className, m_placement, m_date);
}
