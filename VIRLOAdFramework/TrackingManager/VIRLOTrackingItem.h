#pragma once

#include "Clock.h"
#include "KeyedArchive.h"

#include <string>

/// A placement that the host entered, and when. A value.
class VIRLOTrackingItem
{
public:
    /// Dated now.
    [[nodiscard]] static VIRLOTrackingItem initWithPlacement(std::string placement);

    [[nodiscard]] const std::string& placement() const noexcept { return m_placement; }

    [[nodiscard]] virlo::Date date() const noexcept { return m_date; }

    /// Under the class's name, with the keys "placement" and "date".
    [[nodiscard]] virlo::KeyedArchive::Object archivedObject() const;
    [[nodiscard]] std::string description() const;

private:
    VIRLOTrackingItem(std::string placement, virlo::Date date);

    std::string m_placement;
    virlo::Date m_date;
};
