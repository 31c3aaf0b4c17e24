#include "TransactionTable.h"

#include "JSONText.h"
#include "RandomIdentifier.h"

namespace adserver
{

std::string TransactionTable::begin(const std::shared_ptr<const Campaign>& campaign)
{
    const auto said = textAt(campaign->advertisement, "txid");
    auto txid = said.empty() ? randomIdentifier() : said;
    const std::lock_guard lock(m_mutex);
    const auto [entry, isNew] = m_transactions.try_emplace(txid);
    entry->second.campaign = campaign;
    if (isNew)
        m_order.push_back(txid);
    if (m_order.size() > mostKept) {
        m_transactions.erase(m_order.front());
        m_order.pop_front();
    }
    return txid;
}

std::shared_ptr<const Campaign> TransactionTable::campaign(const std::string& txid) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_transactions.find(txid);
    return found == m_transactions.end() ? nullptr : found->second.campaign;
}

void TransactionTable::noteClick(const std::string& txid, const std::string& cid, TimePoint now)
{
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_transactions.find(txid); found != m_transactions.end())
        found->second.clicks.try_emplace(cid, now);
}

bool TransactionTable::takeReward(const std::string& txid, const std::string& cid, TimePoint now)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_transactions.find(txid);
    if (found == m_transactions.end())
        return false;
    auto& [campaign, clicks, rewarded, granted] = found->second;
    const auto reward = campaign->rewards.find(cid);
    if (reward == campaign->rewards.end() || rewarded.contains(cid))
        return false;
    const auto click = clicks.find(cid);
    const bool due = click != clicks.end() && now - click->second >= reward->second;
    if (!due && !granted)
        return false;
    rewarded.insert(cid);
    return true;
}

void TransactionTable::grantRewards()
{
    const std::lock_guard lock(m_mutex);
    for (auto& [txid, transaction] : m_transactions)
        transaction.granted = true;
}

void TransactionTable::clear()
{
    const std::lock_guard lock(m_mutex);
    m_transactions.clear();
    m_order.clear();
}

} // namespace adserver
