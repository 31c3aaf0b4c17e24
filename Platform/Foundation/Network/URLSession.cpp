#include "URLSession.h"

#include "CurlSession.h"
#include "TransferLoop.h"

#include <mutex>
#include <utility>

namespace virlo
{

namespace
{
struct Defaults {
    std::mutex mutex;
    std::string trustedAuthoritiesFile;
};

Defaults& defaults()
{
    static auto* const shared = new Defaults;
    return *shared;
}
} // namespace

std::string describe(const HTTPURLResponse& response)
{
    JSON headers = JSON::object();
    for (const auto& [name, value] : response.headers)
        headers[name] = value;
    return "<HTTPURLResponse: url=" + response.url.absoluteString() +
           ", statusCode=" + std::to_string(response.statusCode) +
           ", headers=" + headers.dump(-1, ' ', false, JSON::error_handler_t::replace) + ">";
}

URLSessionConfiguration URLSessionConfiguration::defaultConfiguration()
{
    URLSessionConfiguration configuration;
    const std::lock_guard lock(defaults().mutex);
    configuration.trustedAuthoritiesFile = defaults().trustedAuthoritiesFile;
    return configuration;
}

void URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(std::string path)
{
    const std::lock_guard lock(defaults().mutex);
    defaults().trustedAuthoritiesFile = std::move(path);
}

std::shared_ptr<URLSession> URLSession::sessionWithConfiguration(URLSessionConfiguration configuration)
{
    return std::make_shared<CurlSession>(std::move(configuration));
}

bool URLSession::drain(Seconds limit)
{
    return TransferLoop::shared().drain(limit);
}

} // namespace virlo
