#include "TrustedAuthorities.h"

#include "SessionState.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace virlo
{

namespace
{
/// OpenSSL looks a certificate up under the hash of its subject: eight hexadecimal digits, a dot and a
/// number.
bool isHashedDirectory(const char* path)
{
    std::error_code error;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() >= 10 && name[8] == '.' &&
            std::all_of(name.begin(), name.begin() + 8,
                        [](unsigned char digit) { return std::isxdigit(digit) != 0; }))
            return true;
    }
    return false;
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
} // namespace

void TrustedAuthorities::locate()
{
    const curl_version_info_data* version = curl_version_info(CURLVERSION_NOW);
    if (version->capath != nullptr && isHashedDirectory(version->capath))
        m_directory = version->capath;
    else if (version->cainfo != nullptr)
        m_bundle = version->cainfo;
}

void TrustedAuthorities::apply(CURL* easy, SessionState& session) const
{
    const std::string& own = session.configuration.trustedAuthoritiesFile;
    // Null also where there is none: libcurl has its own defaults.
    curl_easy_setopt(easy, CURLOPT_CAPATH, m_directory.empty() ? nullptr : m_directory.c_str());
    if (m_directory.empty() && !own.empty() && !m_bundle.empty()) {
        // libcurl takes one file only.
        if (session.authorities.empty())
            session.authorities = contentOf(m_bundle) + '\n' + contentOf(own);
        curl_blob both{session.authorities.data(), session.authorities.size(), CURL_BLOB_NOCOPY};
        curl_easy_setopt(easy, CURLOPT_CAINFO, nullptr);
        curl_easy_setopt(easy, CURLOPT_CAINFO_BLOB, &both);
        return;
    }
    const std::string& file = own.empty() ? m_bundle : own;
    curl_easy_setopt(easy, CURLOPT_CAINFO, file.empty() ? nullptr : file.c_str());
}

} // namespace virlo
