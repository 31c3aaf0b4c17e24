#include "VIRLOVASTTrackingEvents.h"

#include <utility>

namespace
{
// Most creatives name a dozen events, of an address or two each.
constexpr std::size_t commonEvents = 12;
constexpr std::size_t commonAddresses = 2;
} // namespace

void VIRLOVASTTrackingEvents::add(std::string_view event, virlo::URL url)
{
    Event* known = m_events.find(event);
    if (known == nullptr) {
        if (m_events.size() == 0)
            m_events.reserve(commonEvents);
        known = &m_events.insert({std::string(event), {}});
        known->urls.reserve(commonAddresses);
    }
    known->urls.insert(std::move(url));
}

const VIRLOVASTTrackingEvents::Addresses* VIRLOVASTTrackingEvents::urls(std::string_view event) const
{
    const Event* const known = m_events.find(event);
    return known != nullptr ? &known->urls : nullptr;
}
