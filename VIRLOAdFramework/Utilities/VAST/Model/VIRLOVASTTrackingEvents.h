#pragma once

#include "KeyedList.h"
#include "URL.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Which addresses are told of which event of a creative: for each event a set of addresses. Events and
/// addresses come in the order in which they were first named. A value; one thread at a time.
class VIRLOVASTTrackingEvents
{
public:
    [[nodiscard]] static std::string_view textOf(const virlo::URL& url) { return url.absoluteString(); }

    using Addresses = virlo::KeyedList<virlo::URL, &textOf>;

    struct Event {
        std::string name; ///< "start", "firstQuartile"
        Addresses urls;
    };

    /// An address that the event has already is kept once.
    void add(std::string_view event, virlo::URL url);

    /// Null where the event has none. Holds until an address is added.
    [[nodiscard]] const Addresses* urls(std::string_view event) const;

    [[nodiscard]] auto begin() const noexcept { return m_events.begin(); }

    [[nodiscard]] auto end() const noexcept { return m_events.end(); }

private:
    [[nodiscard]] static std::string_view nameOf(const Event& event) { return event.name; }

    virlo::KeyedList<Event, &nameOf> m_events;
};
