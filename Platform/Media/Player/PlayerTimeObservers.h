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

class PlayerItem;

/// The periodic time observers of a QueuePlayer, due for one item after another: at its start, at each
/// multiple of their interval, and at its end. Not locked, and calls nobody itself: the owner does both.
class PlayerTimeObservers
{
public:
    using Item = std::shared_ptr<PlayerItem>;
    using Block = std::function<void(const Item& item, Seconds time)>;
    /// Each hands one call over to its observer's queue.
    using Calls = std::vector<std::function<void()>>;

    struct Observer {
        Seconds interval;
        std::shared_ptr<SerialQueue> queue;
        Block block;
        std::optional<Seconds> next = {}; ///< nothing before the item's start
        std::atomic<bool> removed = false;
    };

    /// `now` is the current item's time: an item that has started is not announced as starting.
    [[nodiscard]] std::shared_ptr<void> add(Seconds interval, std::shared_ptr<SerialQueue> queue, Block block,
                                            Seconds now);
    void remove(const std::shared_ptr<void>& token);
    void removeAll();

    /// Adds a call for every time passed up to `now`.
    void advance(const Item& item, Seconds now, Calls& calls);
    /// The item leaves. Where it `played` to its end, at `now`, adds the calls up to there and a last one.
    /// The next `advance` is the start of the next item.
    void end(const Item& item, Seconds now, bool played, Calls& calls);
    /// The earliest time at which a call is due.
    [[nodiscard]] std::optional<Seconds> next() const;

private:
    std::vector<std::shared_ptr<Observer>> m_observers;
};

} // namespace virlo
