#include "BareHead.h"
#include "Benchmarks.h"
#include "ChildProcess.h"

#include "VIRLOVASTTrackingManager.h"
#include "VIRLOVASTXMLParser.h"

#include <curl/curl.h>
#include <expat.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace
{

constexpr int rounds = 15;
constexpr int chains = 40;
constexpr int wrappers = 5;
constexpr std::size_t impressionsOfAChain = 6 * 6 + 7 * (1 + 2 + 3 + 4 + 5);
constexpr int pings = 1000;
constexpr int connections = 6;
constexpr std::chrono::seconds longestWait{20};

std::size_t take(char* data, std::size_t size, std::size_t count, void* body)
{
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

/// One kept connection of libcurl's.
class BareClient
{
public:
    BareClient() : m_handle(curl_easy_init())
    {
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &take);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, &m_body);
        curl_easy_setopt(m_handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(m_handle, CURLOPT_TIMEOUT, long{longestWait.count()});
        m_head.put(m_handle);
    }

    ~BareClient() { curl_easy_cleanup(m_handle); }

    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    const std::string& get(const std::string& url)
    {
        m_body.clear();
        curl_easy_setopt(m_handle, CURLOPT_URL, url.c_str());
        if (curl_easy_perform(m_handle) != CURLE_OK)
            throw std::runtime_error("a bare request fails");
        return m_body;
    }

private:
    CURL* m_handle;
    BareHead m_head;
    std::string m_body;
};

void followChain(const virlo::URL& url)
{
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<std::size_t> impressions;
    };

    const auto state = std::make_shared<State>();
    const auto parser = VIRLOVASTXMLParser::initWithVASTURL(url);
    parser->setCompletionHandler([state](const auto& ads, const virlo::OptionalError& error) {
        const std::lock_guard lock(state->mutex);
        state->impressions = !error && ads && ads->size() == 1 ? ads->front()->impressions().size() : 0;
        state->changed.notify_one();
    });
    parser->parse();
    std::unique_lock lock(state->mutex);
    if (!state->changed.wait_for(lock, longestWait, [&] { return state->impressions.has_value(); }) ||
        *state->impressions != impressionsOfAChain)
        throw std::runtime_error("a chain comes out wrong");
}

/// With the handlers that any reader of such a document has; they do nothing.
void readByExpat(const std::string& document)
{
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    XML_SetCdataSectionHandler(
        parser, [](void*) {}, [](void*) {});
    const auto status = XML_Parse(parser, document.data(), static_cast<int>(document.size()), XML_TRUE);
    XML_ParserFree(parser);
    if (status != XML_STATUS_OK)
        throw std::runtime_error("a bare response cannot be read");
}

void benchChain(Results& results, const std::string& base)
{
    BareClient client;
    const virlo::URL first = *virlo::URL::fromString(base + "/5.xml");
    const auto ours = [&] {
        return timed([&] {
                   for (int chain = 0; chain < chains; ++chain)
                       followChain(first);
               }) *
               1e3 / chains;
    };
    const auto bare = [&] {
        return timed([&] {
                   for (int chain = 0; chain < chains; ++chain) {
                       for (int document = wrappers; document >= 0; --document)
                           readByExpat(client.get(base + "/" + std::to_string(document) + ".xml"));
                   }
               }) *
               1e3 / chains;
    };
    const Pair time = alternate(rounds, ours, bare);
    results.addRatio("VAST chain of 5 wrappers over loopback HTTP, against requests and expat", time.ours,
                     time.bare, "ms", 6, true);
    results.addLimit("VAST chain of 5 wrappers over loopback HTTP", time.ours, "ms", 3);
}

/// libcurl's multi interface alone, over as many connections as the library opens to one server.
class BarePings
{
public:
    explicit BarePings(const std::string& url)
        : m_multi(curl_multi_init())
        , m_head(VIRLOVASTTrackingManager::sessionConfiguration().additionalHeaders)
    {
        curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, long{connections});
        for (CURL*& handle : m_handles) {
            handle = curl_easy_init();
            curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
            curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
            m_head.put(handle);
        }
    }

    ~BarePings()
    {
        for (CURL* handle : m_handles)
            curl_easy_cleanup(handle);
        curl_multi_cleanup(m_multi);
    }

    BarePings(const BarePings&) = delete;
    BarePings& operator=(const BarePings&) = delete;

    void run()
    {
        int begun = connections;
        int received = 0;
        for (CURL* handle : m_handles)
            curl_multi_add_handle(m_multi, handle);
        const auto end = std::chrono::steady_clock::now() + longestWait;
        while (received < pings) {
            int running = 0;
            curl_multi_perform(m_multi, &running);
            int left = 0;
            while (CURLMsg* message = curl_multi_info_read(m_multi, &left)) {
                CURL* const handle = message->easy_handle;
                long status = 0;
                curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
                if (message->data.result != CURLE_OK || status != 204)
                    throw std::runtime_error("a wrong bare response");
                ++received;
                curl_multi_remove_handle(m_multi, handle);
                if (begun < pings) {
                    ++begun;
                    curl_multi_add_handle(m_multi, handle);
                }
            }
            if (std::chrono::steady_clock::now() > end)
                throw std::runtime_error("bare pings take too long");
            if (received < pings)
                curl_multi_poll(m_multi, nullptr, 0, 1000, nullptr);
        }
    }

private:
    CURLM* m_multi;
    BareHead m_head;
    CURL* m_handles[connections] = {};
};

void benchPings(Results& results, const std::string& base)
{
    const virlo::URL url = *virlo::URL::fromString(base + "/ping");
    const auto manager = VIRLOVASTTrackingManager::sharedManager();
    BarePings bare(url.absoluteString());
    BareClient client;
    const auto arrived = [&] { return std::stol(client.get(base + "/pings")); };
    const Pair rate = alternate(
        rounds,
        [&] {
            const long before = arrived();
            const double seconds = timed([&] {
                for (int ping = 0; ping < pings; ++ping)
                    manager->reportAtURL(url);
                if (!virlo::URLSession::drain(longestWait))
                    throw std::runtime_error("pings take too long");
            });
            if (arrived() - before != pings)
                throw std::runtime_error("pings are lost");
            return pings / seconds;
        },
        [&] { return pings / timed([&] { bare.run(); }); });
    results.addRatio("1,000 VAST pings over loopback HTTP, 6 connections", rate.ours, rate.bare, "pings/s",
                     0.65, false);
}

} // namespace

void benchVASTNetwork(Results& results)
{
    ChildProcess server({programFolder() + "/bench-vast-server"});
    const std::string base = "http://127.0.0.1:" + server.readLine();
    benchChain(results, base);
    benchPings(results, base);
}
