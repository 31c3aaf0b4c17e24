#include "TransactionTrace.h"

#include <httplib.h>

namespace adserver
{

std::string TransactionTrace::of(const ServerRequest& request) const
{
    if (request.path == "/ad/req")
        return {};
    if (request.path.starts_with("/ad/")) {
        const auto begin = request.path.find('/', 4);
        const auto end = begin == std::string::npos ? begin : request.path.find('/', begin + 1);
        return end == std::string::npos ? std::string() : request.path.substr(begin + 1, end - begin - 1);
    }
    if (auto named = request.queryItem("tx"); !named.empty())
        return named;
    const std::lock_guard lock(m_mutex);
    const auto found = m_files.find(request.path);
    return found == m_files.end() ? std::string() : found->second;
}

void TransactionTrace::note(const std::string& transaction, const std::string& text,
                            const std::string& origin)
{
    const std::lock_guard lock(m_mutex);
    for (auto at = text.find(origin + '/'); at != text.npos; at = text.find(origin + '/', at + 1)) {
        const auto begin = at + origin.size();
        const auto end = text.find_first_of("?#\"'<>]) \t\r\n\\", begin);
        if (m_files.size() >= mostFiles)
            m_files.clear();
        m_files[httplib::detail::decode_url(text.substr(begin, end - begin), false)] = transaction;
    }
}

void TransactionTrace::clear()
{
    const std::lock_guard lock(m_mutex);
    m_files.clear();
}

} // namespace adserver
