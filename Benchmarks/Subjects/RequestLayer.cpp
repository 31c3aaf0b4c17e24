#include "BareHead.h"
#include "Benchmarks.h"
#include "ChildProcess.h"

#include "AdServer.h"
#include "VIRLOAdServerAPI.h"

#include <curl/curl.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <stdexcept>

namespace
{

constexpr int rounds = 7;
constexpr int connections = 6;
constexpr int requests = 6000;

/// Keeps `connections` exchanges under way until all have been made.
class OurRound
{
public:
    OurRound(std::shared_ptr<VIRLOAdServerAPI> api, const virlo::URL& url) : m_api(std::move(api)), m_url(url)
    {
    }

    void run()
    {
        for (int connection = 0; connection < connections; ++connection)
            next();
        std::unique_lock lock(m_mutex);
        const bool ended =
            m_ended.wait_for(lock, std::chrono::minutes(1), [this] { return m_underWay == 0; });
        if (!ended || !m_failure.empty())
            throw std::runtime_error(ended ? m_failure : "responses do not come");
    }

private:
    void next()
    {
        {
            const std::lock_guard lock(m_mutex);
            ++m_asked;
            ++m_underWay;
        }
        m_api->sessionGETtoURLWithCompletionHandler(
            m_url, [this](const std::optional<virlo::JSON>& response, const virlo::OptionalError& error,
                          const auto&) { received(response, error); });
    }

    void received(const std::optional<virlo::JSON>& response, const virlo::OptionalError& error)
    {
        bool more = false;
        {
            const std::lock_guard lock(m_mutex);
            if (error)
                m_failure = virlo::describe(*error);
            else if (!response || (*response)["status"] != "SESSION_ACTIVE")
                m_failure = "a wrong response";
            more = m_failure.empty() && m_asked < requests;
        }
        if (more)
            next();
        const std::lock_guard lock(m_mutex);
        if (--m_underWay == 0)
            m_ended.notify_one();
    }

    std::shared_ptr<VIRLOAdServerAPI> m_api;
    virlo::URL m_url;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    int m_asked = 0;
    int m_underWay = 0;
    std::string m_failure;
};

/// The same on libcurl's multi interface and the JSON parser alone.
class BareRound
{
public:
    BareRound(const std::string& url, const std::string& authority, const std::string& userAgent)
        : m_multi(curl_multi_init())
        , m_head({{"User-Agent", userAgent},
                  {"Accept", "application/json"},
                  {"Content-Type", "application/json"}})
    {
        curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, long{connections});
        for (Transfer& transfer : m_transfers) {
            transfer.handle = curl_easy_init();
            curl_easy_setopt(transfer.handle, CURLOPT_URL, url.c_str());
            curl_easy_setopt(transfer.handle, CURLOPT_CAINFO, authority.c_str());
            curl_easy_setopt(transfer.handle, CURLOPT_WRITEFUNCTION, &BareRound::take);
            curl_easy_setopt(transfer.handle, CURLOPT_WRITEDATA, &transfer.body);
            curl_easy_setopt(transfer.handle, CURLOPT_PRIVATE, &transfer);
            curl_easy_setopt(transfer.handle, CURLOPT_NOSIGNAL, 1L);
            m_head.put(transfer.handle);
        }
    }

    ~BareRound()
    {
        for (Transfer& transfer : m_transfers)
            curl_easy_cleanup(transfer.handle);
        curl_multi_cleanup(m_multi);
    }

    BareRound(const BareRound&) = delete;
    BareRound& operator=(const BareRound&) = delete;

    void run()
    {
        int received = 0;
        for (Transfer& transfer : m_transfers)
            curl_multi_add_handle(m_multi, transfer.handle);
        while (received < requests) {
            int running = 0;
            curl_multi_perform(m_multi, &running);
            int left = 0;
            while (CURLMsg* message = curl_multi_info_read(m_multi, &left)) {
                Transfer* transfer = nullptr;
                curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
                if (message->data.result != CURLE_OK ||
                    nlohmann::json::parse(transfer->body)["status"] != "SESSION_ACTIVE")
                    throw std::runtime_error("a wrong bare response");
                transfer->body.clear();
                ++received;
                curl_multi_remove_handle(m_multi, transfer->handle);
                if (received + connections <= requests)
                    curl_multi_add_handle(m_multi, transfer->handle);
            }
            if (received < requests)
                curl_multi_poll(m_multi, nullptr, 0, 1000, nullptr);
        }
    }

private:
    struct Transfer {
        CURL* handle = nullptr;
        std::string body;
    };

    static std::size_t take(char* data, std::size_t size, std::size_t count, void* body)
    {
        static_cast<std::string*>(body)->append(data, size * count);
        return size * count;
    }

    CURLM* m_multi;
    BareHead m_head;
    Transfer m_transfers[connections];
};

} // namespace

void benchRequestLayer(Results& results)
{
    const auto folder = std::filesystem::temp_directory_path() / "virlo-bench-request-layer";
    std::filesystem::remove_all(folder);
    adserver::AdServerOptions options;
    options.stateFolder = folder;
    adserver::AdServer certificates(options);
    certificates.start();
    const std::string authority = certificates.authorityFile().string();
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(authority);

    ChildProcess server({programFolder() + "/bench-responses", (folder / "server.pem").string(),
                         (folder / "server.key").string()});
    const std::string base = "https://localhost:" + server.readLine();
    const auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString(base));
    const virlo::URL url = api->entryPoint().appendingPathComponent("response");
    BareRound bare(url.absoluteString(), authority, api->generateUserAgent());

    const Pair rate = alternate(
        rounds, [&] { return requests / timed([&] { OurRound(api, url).run(); }); },
        [&] { return requests / timed([&] { bare.run(); }); });
    results.addRatio("request layer, loopback TLS, 6 connections, JSON parsed", rate.ours, rate.bare,
                     "requests/s", 0.65, false);
}
