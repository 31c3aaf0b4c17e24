#include "ExchangeLog.h"

#include "JSONText.h"

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace adserver
{

void ExchangeLog::open(const std::filesystem::path& file)
{
    const std::lock_guard lock(m_mutex);
    m_file = {};
    m_writes = !file.empty();
    if (!m_writes)
        return;
    m_file.open(file, std::ios::app);
    if (!m_file)
        throw std::runtime_error("cannot write the log " + file.string());
}

void ExchangeLog::note(const AdServerExchange& exchange)
{
    const auto line = m_writes ? printJSON(exchange.toJSON()) + '\n' : std::string();
    {
        const std::lock_guard lock(m_mutex);
        if (m_exchanges.size() >= mostKept)
            m_exchanges.erase(m_exchanges.begin(), m_exchanges.begin() + mostKept / 2);
        m_exchanges.push_back(exchange);
        if (!line.empty() && !(m_file << line << std::flush) && !std::exchange(m_complained, true))
            std::fputs("ad-server: the log cannot be written any more\n", stderr);
    }
    m_changed.notify_all();
}

void ExchangeLog::clear()
{
    const std::lock_guard lock(m_mutex);
    m_exchanges.clear();
}

std::vector<AdServerExchange> ExchangeLog::exchanges() const
{
    const std::lock_guard lock(m_mutex);
    return m_exchanges;
}

bool ExchangeLog::waitUntil(const std::function<bool(const std::vector<AdServerExchange>&)>& condition,
                            std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return condition(m_exchanges); });
}

} // namespace adserver
