#include "ClipDownload.h"

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

/// Longer than whoever waits for a picture does.
constexpr std::chrono::seconds longestSilence{20};
/// A film may stand still for as long as its viewer likes, with its connection open.
constexpr std::chrono::hours longestExchange{24};
/// What may wait for the reader.
constexpr std::size_t maximumAhead = std::size_t{256} << 10;
/// A line that is gone for a moment is no reason to end a film.
constexpr int maximumVainTries = 3;
constexpr std::chrono::seconds shortestPause{1};
/// The demuxer swallows a piece whole, and only what stands before it counts as buffered.
constexpr std::size_t largestPiece = std::size_t{8} << 10;
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

/// The whole clip's, whatever part of it this answer carries.
std::optional<std::uint64_t> sizeOf(const HTTPURLResponse& response)
{
    if (response.statusCode != partialContent)
        return numberIn(headerOf(response, "content-length"));
    const std::string range = headerOf(response, "content-range");
    const auto total = range.rfind('/');
    return total != std::string::npos ? numberIn(range.substr(total + 1)) : std::nullopt;
}

/// Where an answer's bytes stand in the clip.
std::optional<std::uint64_t> placeOf(const HTTPURLResponse& response)
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

struct ClipDownload::Shared : std::enable_shared_from_this<Shared> {
    Shared(URL clip, std::shared_ptr<TransferMeter> told)
        : url(std::move(clip))
        , finalURL(url)
        , meter(std::move(told))
    {
    }

    void start();
    void abandon();
    [[nodiscard]] bool take(int from, std::string_view piece, const HTTPURLResponse& response);
    void complete(int from, const std::optional<HTTPURLResponse>& response, const OptionalError& error);
    [[nodiscard]] bool note(const HTTPURLResponse& response);
    void handOver(std::string& piece);
    [[nodiscard]] std::optional<Progress> conclude();

    const URL url;
    const std::shared_ptr<URLSession> session =
        URLSession::sessionWithConfiguration(URLSessionConfiguration::defaultConfiguration());

    mutable std::mutex mutex; ///< guards all below
    std::condition_variable changed;
    URL finalURL;
    std::shared_ptr<TransferMeter> meter;
    std::optional<std::uint64_t> size;
    bool seekable = true;
    bool interrupted = false;
    std::uint64_t place = 0;
    std::string failure;

    // One request
    int attempt = 0; ///< its number; what a former one still says is not heard
    std::shared_ptr<URLSessionTask> task;
    std::uint64_t begunAt = 0;
    std::string waiting;
    std::size_t read = 0; ///< of `waiting`
    bool held = false;
    bool ended = false;
    std::optional<long> status;
    bool fits = false; ///< brings what was asked for
    OptionalError error;
    std::optional<Instant> retryAt; ///< when the next request follows
    int vainTries = 0;              ///< those in a row that brought nothing
};

// The request

void ClipDownload::Shared::start()
{
    abandon();
    URLRequest request{url};
    request.timeout = longestExchange;
    request.maximumBodySize = std::numeric_limits<std::size_t>::max();
    request.headers["Accept-Encoding"] = "identity"; // places count in the clip's own bytes
    if (place > 0)
        request.headers["Range"] = "bytes=" + std::to_string(place) + "-";
    begunAt = place;
    held = ended = fits = false;
    status.reset();
    error.reset();
    retryAt.reset();
    const auto self = shared_from_this();
    task = session->streamTask(
        std::move(request),
        [self, from = attempt](std::string_view piece, const HTTPURLResponse& response) {
            return self->take(from, piece, response);
        },
        [self, from = attempt](const std::string&, const auto& response, const OptionalError& failed) {
            self->complete(from, response, failed);
        });
    meter->handedOn(Instant::clock::now());
    task->resume();
}

void ClipDownload::Shared::abandon()
{
    ++attempt;
    waiting.clear();
    read = 0;
    if (const auto former = std::exchange(task, nullptr))
        former->cancel();
}

bool ClipDownload::Shared::take(int from, std::string_view piece, const HTTPURLResponse& response)
{
    const std::lock_guard lock(mutex);
    if (from != attempt || !note(response))
        return false;
    const auto now = Instant::clock::now();
    meter->arrived(piece.size(), now);
    waiting.erase(0, std::exchange(read, 0)).append(piece);
    if (waiting.size() < maximumAhead) {
        meter->handedOn(now);
    } else {
        held = true;
        task->suspend();
    }
    changed.notify_all();
    return true;
}

void ClipDownload::Shared::complete(int from, const std::optional<HTTPURLResponse>& response,
                                    const OptionalError& failed)
{
    const std::lock_guard lock(mutex);
    if (from != attempt)
        return;
    if (response)
        static_cast<void>(note(*response));
    ended = true;
    error = failed;
    changed.notify_all();
}

bool ClipDownload::Shared::note(const HTTPURLResponse& response)
{
    if (!status) {
        status = response.statusCode;
        finalURL = response.url;
        // Whoever sends the whole in place of a part would have it played from its start again.
        fits = isFound(response.statusCode) && placeOf(response) == begunAt;
        if (fits) {
            size = sizeOf(response);
            seekable = size && headerOf(response, "accept-ranges") != "none";
        }
    }
    return fits;
}

// The reader

void ClipDownload::Shared::handOver(std::string& piece)
{
    piece.assign(waiting, read, largestPiece);
    read += piece.size();
    place += piece.size();
    if (read < waiting.size())
        return;
    waiting.clear();
    read = 0;
    if (std::exchange(held, false)) {
        meter->handedOn(Instant::clock::now());
        task->resume();
    }
}

/// What the end of the request means; nothing where another one is to follow.
std::optional<ClipDownload::Progress> ClipDownload::Shared::conclude()
{
    // Some servers send less than they were asked for, and mean it.
    const bool isWhole = fits && !error && place >= size.value_or(0);
    if (isWhole || (begunAt > 0 && status == rangeNotSatisfiable)) {
        meter->finished();
        return Progress::End;
    }
    if (place > begunAt)
        vainTries = 0;
    const bool mayComeBack = !status || fits || *status / 100 == 5;
    if (mayComeBack && seekable && place > 0 && vainTries < maximumVainTries) {
        retryAt = Instant::clock::now() + vainTries * shortestPause;
        ++vainTries;
        return std::nullopt;
    }
    if (fits || !status)
        failure = error ? error->userInfo.value("Reason", describe(*error)) : "The connection ended";
    else
        failure = "The server answers " + std::to_string(*status);
    return status && !isFound(*status) ? Progress::Missing : Progress::Failed;
}

ClipDownload::ClipDownload(URL url, std::shared_ptr<TransferMeter> meter)
    : m_shared(std::make_shared<Shared>(std::move(url), std::move(meter)))
{
}

ClipDownload::~ClipDownload()
{
    stop();
}

ClipDownload::Progress ClipDownload::read(std::string& piece)
{
    Shared& shared = *m_shared;
    std::unique_lock lock(shared.mutex);
    const auto deadline = Instant::clock::now() + longestSilence;
    while (Instant::clock::now() < deadline) {
        if (shared.interrupted)
            return Progress::Interrupted;
        if (!shared.waiting.empty()) {
            shared.handOver(piece);
            return Progress::Piece;
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
    shared.failure = "Nothing comes any more";
    shared.abandon();
    return Progress::Failed;
}

void ClipDownload::seek(std::uint64_t place)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->abandon();
    m_shared->retryAt.reset();
    m_shared->ended = false;
    m_shared->vainTries = 0;
    m_shared->place = place;
}

void ClipDownload::setInterrupted(bool interrupted)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->interrupted = interrupted;
    m_shared->changed.notify_all();
}

void ClipDownload::stop()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->abandon();
}

std::uint64_t ClipDownload::place() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->place;
}

std::optional<std::uint64_t> ClipDownload::size() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->size;
}

bool ClipDownload::isSeekable() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->seekable;
}

URL ClipDownload::url() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->finalURL;
}

std::string ClipDownload::failure() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->failure;
}

} // namespace virlo
