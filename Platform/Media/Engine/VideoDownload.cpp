#include "VideoDownload.h"

#include "TransferMeter.h"
#include "URLSession.h"

#include <algorithm>
#include <charconv>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <utility>

namespace virlo
{

namespace
{

using Instant = TransferMeter::Instant;

/// A viewer may pause a video for this long with its connection open.
constexpr std::chrono::hours longestTransfer{24};
/// What may wait for the reader.
constexpr std::size_t maximumAhead = std::size_t{256} << 10;
/// In a row, without a byte.
constexpr int maximumAttempts = 3;
/// The demuxer takes a chunk as a whole, and only what waits before it counts as buffered.
constexpr std::size_t largestChunk = std::size_t{8} << 10;
constexpr long partialContent = 206;
constexpr long rangeNotSatisfiable = 416;

std::string headerOf(const HTTPURLResponse& response, const char* name)
{
    const auto found = response.headers.find(name);
    return found != response.headers.end() ? found->second : std::string();
}

std::optional<std::uint64_t> numberIn(std::string_view text)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

/// The whole video's, whatever part of it this response carries.
std::optional<std::uint64_t> sizeOf(const HTTPURLResponse& response)
{
    if (response.statusCode != partialContent)
        return numberIn(headerOf(response, "content-length"));
    const std::string range = headerOf(response, "content-range");
    const auto total = range.rfind('/');
    return total != std::string::npos ? numberIn(range.substr(total + 1)) : std::nullopt;
}

/// The position in the video of a response's first byte.
std::optional<std::uint64_t> positionOf(const HTTPURLResponse& response)
{
    constexpr std::string_view unit = "bytes ";
    const std::string range = headerOf(response, "content-range");
    if (response.statusCode != partialContent)
        return 0;
    return range.starts_with(unit) ? numberIn(range.substr(unit.size(), range.find('-') - unit.size()))
                                   : std::nullopt;
}

bool isFound(long status)
{
    return status / 100 == 2;
}

} // namespace

struct VideoDownload::Shared : std::enable_shared_from_this<Shared> {
    Shared(URL video, std::shared_ptr<TransferMeter> transferMeter, const PlaybackLimits& playbackLimits)
        : url(std::move(video))
        , limits(playbackLimits)
        , finalURL(url)
        , meter(std::move(transferMeter))
    {
    }

    void start();
    void cancel();
    [[nodiscard]] bool receive(int from, std::string_view chunk, const HTTPURLResponse& response);
    void complete(int from, const std::optional<HTTPURLResponse>& response, const OptionalError& error);
    [[nodiscard]] bool checkResponse(const HTTPURLResponse& response);
    void moveChunk(std::string& chunk);
    [[nodiscard]] std::optional<Progress> conclude();

    const URL url;
    const PlaybackLimits limits;
    const std::shared_ptr<URLSession> session =
        URLSession::sessionWithConfiguration(URLSessionConfiguration::defaultConfiguration());

    mutable std::mutex mutex; ///< guards all below
    std::condition_variable changed;
    URL finalURL;
    std::shared_ptr<TransferMeter> meter;
    std::optional<std::uint64_t> size;
    bool seekable = true;
    bool interrupted = false;
    std::uint64_t position = 0;
    std::string failure;

    // One request
    int attempt = 0; ///< its number; callbacks of an earlier request are ignored
    std::shared_ptr<URLSessionTask> task;
    std::uint64_t firstByte = 0;
    std::string waiting;
    std::size_t read = 0; ///< of `waiting`
    bool held = false;
    bool ended = false;
    std::optional<long> status;
    bool fits = false; ///< the response carries the requested bytes
    OptionalError error;
    std::optional<Instant> retryAt; ///< when the next request follows
    int attempts = 0;               ///< in a row, without a byte
};

// The request

void VideoDownload::Shared::start()
{
    cancel();
    URLRequest request{url};
    request.timeout = longestTransfer;
    request.maximumBodySize = std::numeric_limits<std::size_t>::max();
    request.headers["Accept-Encoding"] = "identity"; // ranges count in the file's own bytes
    if (position > 0)
        request.headers["Range"] = "bytes=" + std::to_string(position) + "-";
    firstByte = position;
    held = ended = fits = false;
    status.reset();
    error.reset();
    retryAt.reset();
    const auto self = shared_from_this();
    task = session->streamTask(
        std::move(request),
        [self, from = attempt](std::string_view chunk, const HTTPURLResponse& response) {
            return self->receive(from, chunk, response);
        },
        [self, from = attempt](const std::string&, const auto& response, const OptionalError& failed) {
            self->complete(from, response, failed);
        });
    meter->handedOn(Instant::clock::now());
    task->resume();
}

void VideoDownload::Shared::cancel()
{
    ++attempt;
    waiting.clear();
    read = 0;
    if (const auto former = std::exchange(task, nullptr))
        former->cancel();
}

bool VideoDownload::Shared::receive(int from, std::string_view chunk, const HTTPURLResponse& response)
{
    const std::lock_guard lock(mutex);
    if (from != attempt || !checkResponse(response))
        return false;
    const auto now = Instant::clock::now();
    meter->arrived(chunk.size(), now);
    waiting.erase(0, std::exchange(read, 0)).append(chunk);
    if (waiting.size() < maximumAhead) {
        meter->handedOn(now);
    } else {
        held = true;
        task->suspend();
    }
    changed.notify_all();
    return true;
}

void VideoDownload::Shared::complete(int from, const std::optional<HTTPURLResponse>& response,
                                     const OptionalError& failed)
{
    const std::lock_guard lock(mutex);
    if (from != attempt)
        return;
    if (response)
        static_cast<void>(checkResponse(*response));
    ended = true;
    error = failed;
    changed.notify_all();
}

bool VideoDownload::Shared::checkResponse(const HTTPURLResponse& response)
{
    if (!status) {
        status = response.statusCode;
        finalURL = response.url;
        // A server that sends the whole file for a range would have it played from the start again.
        fits = isFound(response.statusCode) && positionOf(response) == firstByte;
        if (fits) {
            size = sizeOf(response);
            seekable = size && headerOf(response, "accept-ranges") != "none";
        }
    }
    return fits;
}

// The reader

void VideoDownload::Shared::moveChunk(std::string& chunk)
{
    chunk.assign(waiting, read, largestChunk);
    read += chunk.size();
    position += chunk.size();
    if (read < waiting.size())
        return;
    waiting.clear();
    read = 0;
    if (std::exchange(held, false)) {
        meter->handedOn(Instant::clock::now());
        task->resume();
    }
}

/// What the end of the request means; nothing where another request follows.
std::optional<VideoDownload::Progress> VideoDownload::Shared::conclude()
{
    // Some servers send less than was requested.
    const bool isWhole = fits && !error && position >= size.value_or(0);
    if (isWhole || (firstByte > 0 && status == rangeNotSatisfiable)) {
        meter->finished();
        return Progress::End;
    }
    if (position > firstByte)
        attempts = 0;
    const bool mayRecover = !status || fits || *status / 100 == 5;
    if (mayRecover && seekable && position > 0 && attempts < maximumAttempts) {
        retryAt = Instant::clock::now() + attempts * limits.retryPause;
        ++attempts;
        return std::nullopt;
    }
    if (fits || !status)
        failure = error ? error->userInfo.value("Reason", describe(*error)) : "The connection ended";
    else
        failure = "The server responds with " + std::to_string(*status);
    return status && !isFound(*status) ? Progress::Missing : Progress::Failed;
}

VideoDownload::VideoDownload(URL url, std::shared_ptr<TransferMeter> meter, const PlaybackLimits& limits)
    : m_shared(std::make_shared<Shared>(std::move(url), std::move(meter), limits))
{
}

VideoDownload::~VideoDownload()
{
    stop();
}

VideoDownload::Progress VideoDownload::read(std::string& chunk)
{
    Shared& shared = *m_shared;
    std::unique_lock lock(shared.mutex);
    const auto deadline = Instant::clock::now() + shared.limits.silence;
    while (Instant::clock::now() < deadline) {
        if (shared.interrupted)
            return Progress::Interrupted;
        if (!shared.waiting.empty()) {
            shared.moveChunk(chunk);
            return Progress::Chunk;
        }
        if (std::exchange(shared.ended, false)) {
            if (const auto end = shared.conclude()) {
                shared.ended = true;
                return *end;
            }
        }
        if (!shared.task || (shared.retryAt && *shared.retryAt <= Instant::clock::now()))
            shared.start();
        shared.changed.wait_until(lock, std::min(deadline, shared.retryAt.value_or(deadline)));
    }
    shared.failure = "Nothing arrives any more";
    shared.cancel();
    return Progress::Failed;
}

void VideoDownload::seek(std::uint64_t position)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->cancel();
    m_shared->retryAt.reset();
    m_shared->ended = false;
    m_shared->attempts = 0;
    m_shared->position = position;
}

void VideoDownload::setInterrupted(bool interrupted)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->interrupted = interrupted;
    m_shared->changed.notify_all();
}

void VideoDownload::stop()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->cancel();
}

std::uint64_t VideoDownload::position() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->position;
}

std::optional<std::uint64_t> VideoDownload::size() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->size;
}

bool VideoDownload::isSeekable() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->seekable;
}

URL VideoDownload::url() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->finalURL;
}

std::string VideoDownload::failure() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->failure;
}

} // namespace virlo
