#pragma once

#include "URL.h"
#include "XMLAttributes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// One media file of a creative, in one size and format. Immutable; any thread.
class VIRLOVASTMediaFile
{
public:
    /// `url` is absent where the element's text is not a URL; `properties` are the attributes of the element
    /// "MediaFile".
    [[nodiscard]] static std::shared_ptr<VIRLOVASTMediaFile>
    initWithURLAndProperties(std::optional<virlo::URL> url, const virlo::XMLAttributes& properties);

    VIRLOVASTMediaFile(std::optional<virlo::URL> url, const virlo::XMLAttributes& properties);
    VIRLOVASTMediaFile(const VIRLOVASTMediaFile&) = delete;
    VIRLOVASTMediaFile& operator=(const VIRLOVASTMediaFile&) = delete;

    [[nodiscard]] const std::optional<virlo::URL>& url() const noexcept { return m_url; }

    /// A MIME type, such as "video/mp4".
    [[nodiscard]] const std::optional<std::string>& type() const noexcept { return m_type; }

    /// "progressive" or "streaming".
    [[nodiscard]] const std::optional<std::string>& delivery() const noexcept { return m_delivery; }

    /// Pixels; 0 where the document has no number.
    [[nodiscard]] std::uint64_t width() const noexcept { return m_width; }

    [[nodiscard]] std::uint64_t height() const noexcept { return m_height; }

    /// The number of pixels.
    [[nodiscard]] std::uint64_t qualityRating() const noexcept { return m_width * m_height; }

    /// By URL alone; one without a URL equals none.
    [[nodiscard]] bool isEqual(const VIRLOVASTMediaFile& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

private:
    const std::optional<virlo::URL> m_url;
    const std::optional<std::string> m_type;
    const std::optional<std::string> m_delivery;
    const std::uint64_t m_width;
    const std::uint64_t m_height;
};
