#pragma once

#include "URLSession.h"

#include <curl/curl.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// A request in the form in which libcurl takes it, for one exchange after the other. libcurl only points to
/// what it holds, and to the URLRequest. I/O thread.
class WireRequest
{
public:
    using Headers = std::map<std::string, std::string>;

    /// Scheme and authority, as they stand in the URL.
    [[nodiscard]] static std::string_view serverOf(const URL& url);

    /// Sets every option that differs between requests, whatever `easy` carried before. The answer is the
    /// reason why the request cannot be sent, or nothing. `additional` gives way to the request's own
    /// headers.
    [[nodiscard]] std::optional<std::string> apply(CURL* easy, const URLRequest& request,
                                                   const Headers& additional);

private:
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    /// What the lines of a head come from.
    struct Head {
        Headers additional;
        Headers own;
        bool isForm = false;
    };

    [[nodiscard]] bool makeLines();
    [[nodiscard]] bool append(const Headers& headers, const Headers& stronger);
    void append(const std::string& line);

    Head m_head;
    std::unique_ptr<curl_slist, FreeList> m_lines; ///< of `m_head`: most requests have the head of the last
};

} // namespace virlo
