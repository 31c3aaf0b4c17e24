#pragma once

#include "URL.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace virlo
{

class TransferMeter;

/// A clip's bytes as they come over the network, for a thread that waits for them. A connection that breaks
/// is made again from where it broke; three in a row that bring nothing are the end. Little is held of what
/// nobody has read yet; the server is held back then. One thread reads and seeks; the rest is for any.
class ClipDownload
{
public:
    enum class Progress {
        Piece,
        End,
        Interrupted,
        Missing, ///< the server does not have it
        Failed
    };

    /// Nothing is asked for until the first `read`. `meter` is told of what comes.
    ClipDownload(URL url, std::shared_ptr<TransferMeter> meter);
    ~ClipDownload();
    ClipDownload(const ClipDownload&) = delete;
    ClipDownload& operator=(const ClipDownload&) = delete;

    /// Waits for the next bytes and puts them into `piece`; twenty seconds without any are a failure.
    [[nodiscard]] Progress read(std::string& piece);
    /// What `read` brings next.
    void seek(std::uint64_t place);
    /// `read` returns at once, and goes on doing so, until this is taken back.
    void setInterrupted(bool interrupted);
    /// Lets go of the connection.
    void stop();

    [[nodiscard]] std::uint64_t place() const;
    /// Nothing while unknown, and where the server does not say.
    [[nodiscard]] std::optional<std::uint64_t> size() const;
    /// True until the server has said otherwise.
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
