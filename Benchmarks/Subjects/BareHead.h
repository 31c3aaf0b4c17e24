#pragma once

#include <curl/curl.h>

#include <map>
#include <memory>
#include <string>

/// The headers of the library's own requests, so that the bare side sends requests of the same size.
class BareHead
{
public:
    explicit BareHead(const std::map<std::string, std::string>& headers = {})
    {
        for (const auto& [name, value] : headers)
            m_lines.reset(curl_slist_append(m_lines.release(), (name + ": " + value).c_str()));
    }

    /// The handle must not outlive the head.
    void put(CURL* handle) const
    {
        curl_easy_setopt(handle, CURLOPT_HTTPHEADER, m_lines.get());
        curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "gzip");
    }

private:
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    std::unique_ptr<curl_slist, FreeList> m_lines;
};
