#pragma once

#include "URLSession.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// The heads of an exchange's answers, gathered line by line; the last that arrived whole counts. What is
/// needed while the body comes is read at once, the rest only when the response is asked for. Used by one
/// thread at a time.
class ResponseHead
{
public:
    enum class Progress {
        Arriving,
        Whole, ///< this line ended a head
        TooLong
    };

    /// All heads of one exchange together may not be longer.
    static constexpr std::size_t maximumSize = std::size_t{1} << 20;

    /// Announcements (status 1xx) end without becoming whole, and trailers are passed over.
    [[nodiscard]] Progress take(std::string_view line);

    /// A head has begun and has not ended.
    [[nodiscard]] bool isArriving() const noexcept { return m_arriving; }

    /// 0 where no head has arrived whole.
    [[nodiscard]] long status() const noexcept { return m_status; }

    /// What Content-Length says; nothing where it is missing, and the highest number where it is none.
    [[nodiscard]] std::optional<std::uint64_t> announcedLength() const noexcept { return m_length; }

    [[nodiscard]] HTTPURLResponse response(URL url) const;

private:
    void begin(std::string_view statusLine);
    void noteLength(std::string_view line);

    std::size_t m_size = 0;
    bool m_arriving = false;
    long m_arrivingStatus = 0;
    std::optional<std::uint64_t> m_arrivingLength;
    std::string m_arrivingFields;

    long m_status = 0;
    std::optional<std::uint64_t> m_length;
    std::string m_fields; // lines without their ends, each followed by a line feed
};

} // namespace virlo
