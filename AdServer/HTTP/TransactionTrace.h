#pragma once

#include "ServerRequest.h"

#include <mutex>
#include <string>
#include <unordered_map>

namespace adserver
{

/// Finds the ad transaction that a request belongs to: it is in the path of reports, in the query of VAST
/// documents and tracking URLs; an image's or a video's is the one whose advertisement or document named that
/// file last. Safe from any thread.
class TransactionTrace
{
public:
    /// Beyond that many files all are forgotten.
    static constexpr std::size_t mostFiles = 20'000;

    /// Empty when it belongs to none.
    [[nodiscard]] std::string of(const ServerRequest& request) const;
    /// The transaction's client got this text; the addresses in it that begin with `origin` are now its own.
    void note(const std::string& transaction, const std::string& text, const std::string& origin);
    void clear();

private:
    mutable std::mutex m_mutex;
    std::unordered_map<std::string, std::string> m_files;
};

} // namespace adserver
