#pragma once

#include "Clock.h"
#include "SerialQueue.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace virlo
{

/// Who wants to be told as a clip's time passes. Not locked: the owner does that.
class PlayerTimeObservers
{
public:
    using Block = std::function<void(Seconds time)>;

    struct Observer {
        Seconds interval;
        std::shared_ptr<SerialQueue> queue;
        Block block;
        Seconds mark; ///< the next time at which it is due
        std::atomic<bool> removed = false;
    };

    /// Told from the next multiple of `interval` after `now` on.
    [[nodiscard]] std::shared_ptr<void> add(Seconds interval, std::shared_ptr<SerialQueue> queue, Block block,
                                            Seconds now);
    void remove(const std::shared_ptr<void>& token);
    void removeAll();

    /// Another clip: its time begins anew.
    void restart();
    /// Hands the time to everyone who is due, once however many intervals have passed.
    void tell(Seconds now);
    /// The earliest time at which somebody is due.
    [[nodiscard]] std::optional<Seconds> next() const;

private:
    std::vector<std::shared_ptr<Observer>> m_observers;
};

} // namespace virlo
