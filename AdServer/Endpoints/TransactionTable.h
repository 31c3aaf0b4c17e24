#pragma once

#include "Campaign.h"
#include "Dates.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace adserver
{

/// The advertisements that were handed out, and the rewards that clicks on them bring. Safe from any thread.
/// The last `mostKept` are known; links of older ones are not found any more.
class TransactionTable
{
public:
    static constexpr std::size_t mostKept = 10'000;

    /// Stores the campaign under a new identifier, or under its own "txid"; returns the identifier.
    [[nodiscard]] std::string begin(const std::shared_ptr<const Campaign>& campaign);
    /// Null when unknown.
    [[nodiscard]] std::shared_ptr<const Campaign> campaign(const std::string& txid) const;

    /// The first click on an item starts the time to its reward.
    void noteClick(const std::string& txid, const std::string& cid, TimePoint now);
    /// True once, when the item's time is up or all rewards have been granted.
    [[nodiscard]] bool takeReward(const std::string& txid, const std::string& cid, TimePoint now);
    void grantRewards();
    void clear();

private:
    struct Transaction {
        std::shared_ptr<const Campaign> campaign;
        std::map<std::string, TimePoint> clicks;
        std::set<std::string> rewarded;
        bool granted = false;
    };

    mutable std::mutex m_mutex;
    std::map<std::string, Transaction> m_transactions;
    std::deque<std::string> m_order;
};

} // namespace adserver
