#pragma once

#include "PlaybackLimits.h"
#include "URL.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace virlo
{

class TransferMeter;

/// A video's bytes as they arrive over the network, for a thread that waits for them. A broken connection is
/// resumed from where it broke; three attempts in a row without a byte are the end. At most 256 KiB wait for
/// the reader; the server is held back then. One thread reads and seeks; the rest is for any.
class VideoDownload
{
public:
    enum class Progress {
        Chunk,
        End,
        Interrupted,
        Missing, ///< the server does not have it
        Failed
    };

    /// Nothing is requested until the first `read`. `meter` counts what arrives.
    VideoDownload(URL url, std::shared_ptr<TransferMeter> meter, const PlaybackLimits& limits = {});
    ~VideoDownload();
    VideoDownload(const VideoDownload&) = delete;
    VideoDownload& operator=(const VideoDownload&) = delete;

    /// Waits for the next bytes and puts them into `chunk`; `PlaybackLimits::silence` without any is a
    /// failure.
    [[nodiscard]] Progress read(std::string& chunk);
    /// Where the next `read` begins.
    void seek(std::uint64_t position);
    /// `read` returns at once, and keeps doing so until this is reset.
    void setInterrupted(bool interrupted);
    /// Closes the connection.
    void stop();

    [[nodiscard]] std::uint64_t position() const;
    /// Nothing while unknown, and where the server does not name it.
    [[nodiscard]] std::optional<std::uint64_t> size() const;
    /// True until the server's response says otherwise.
    [[nodiscard]] bool isSeekable() const;
    /// After redirects.
    [[nodiscard]] URL url() const;
    /// Why `read` failed.
    [[nodiscard]] std::string failure() const;

private:
    struct Shared;

    const std::shared_ptr<Shared> m_shared; ///< with the session's callbacks
};

} // namespace virlo
