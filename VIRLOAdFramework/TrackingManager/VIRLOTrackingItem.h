#pragma once

#include "Clock.h"
#include "PropertyList.h"

#include <optional>
#include <string>

/// One placement that the host entered, and when. A value.
class VIRLOTrackingItem
{
public:
    /// Dated now.
    [[nodiscard]] static VIRLOTrackingItem initWithPlacement(std::string placement);
    /// Nothing where the archived object is no such item.
    [[nodiscard]] static std::optional<VIRLOTrackingItem>
    initWithArchivedObject(const virlo::PropertyList::ArchivedObject& object);

    [[nodiscard]] const std::string& placement() const noexcept { return m_placement; }

    [[nodiscard]] virlo::Date date() const noexcept { return m_date; }

    /// Under the class's name, with the keys "placement" and "date".
    [[nodiscard]] virlo::PropertyList::ArchivedObject archivedObject() const;
    [[nodiscard]] std::string description() const;

private:
    VIRLOTrackingItem(std::string placement, virlo::Date date);

    std::string m_placement;
    virlo::Date m_date;
};
