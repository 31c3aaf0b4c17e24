#pragma once

#include "ResponseBody.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace adserver
{

/// Server-sent events for any number of listeners, each with a queue of its own. Safe from any thread;
/// publishing never waits for a listener. One whose queue grows over `mostQueued` bytes loses it and gets
/// the event "reload" in its place.
class EventFeed
{
public:
    static constexpr std::size_t mostQueued = std::size_t{8} << 20U;

    EventFeed();

    /// `data` is one line. Costs nothing without listeners, so ask `isHeard` before making the text.
    void publish(std::string_view name, const std::string& data);
    [[nodiscard]] bool isHeard() const;
    /// A body that never ends by itself: each read waits for the next events. It ends once the feed closes.
    [[nodiscard]] std::shared_ptr<const ResponseBody> listen();
    /// Ends all bodies, also those that begin later, until `open`.
    void close();
    void open();

private:
    class Listener;

    /// Outlives the feed while a listener is being sent.
    struct Shared {
        std::mutex mutex;
        std::condition_variable changed;
        bool isClosed = false;
    };

    const std::shared_ptr<Shared> m_shared;
    std::vector<std::weak_ptr<Listener>> m_listeners;
};

} // namespace adserver
