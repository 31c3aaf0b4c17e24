#pragma once

#include "URLSession.h"

#include <curl/curl.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace virlo
{

struct FreeHeaderLines {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using HeaderLines = std::unique_ptr<curl_slist, FreeHeaderLines>;

/// Sets what a request asks for on a fresh libcurl handle. libcurl keeps pointers to `lines`, which this
/// fills, and to the request's body. Returns the reason why the request cannot be sent, or nothing.
/// `additional` headers give way to the request's own.
[[nodiscard]] std::optional<std::string>
setRequestOptions(CURL* easy, const URLRequest& request, const std::map<std::string, std::string>& additional,
                  HeaderLines& lines);

} // namespace virlo
