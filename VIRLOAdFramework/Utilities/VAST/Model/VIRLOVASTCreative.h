#pragma once

#include "URL.h"
#include "XMLAttributes.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

class VIRLOVASTMediaFile;

/// One linear creative of an ad: its duration, its media files and the tracking URLs of its playback events.
/// Built and changed by one thread at a time; a finished ad is only read.
class VIRLOVASTCreative
{
public:
    /// The URLs of each event ("start", "firstQuartile"), each URL once.
    using TrackingEvents = std::map<std::string, std::set<virlo::URL>, std::less<>>;
    using MediaFiles = std::vector<std::shared_ptr<VIRLOVASTMediaFile>>;

    /// `properties` are the attributes of the element "Creative".
    [[nodiscard]] static std::shared_ptr<VIRLOVASTCreative>
    initWithProperties(const virlo::XMLAttributes& properties);

    explicit VIRLOVASTCreative(const virlo::XMLAttributes& properties);
    VIRLOVASTCreative(const VIRLOVASTCreative&) = delete;
    VIRLOVASTCreative& operator=(const VIRLOVASTCreative&) = delete;

    /// The attribute "AdID", in this spelling only.
    [[nodiscard]] const std::optional<std::string>& identifier() const noexcept { return m_identifier; }

    /// 0 where the document has no number.
    [[nodiscard]] std::uint64_t sequence() const noexcept { return m_sequence; }

    /// Seconds.
    [[nodiscard]] double duration() const noexcept { return m_duration; }

    void setDuration(double seconds) noexcept { m_duration = seconds; }

    /// Absent until the first "Tracking" element was read.
    [[nodiscard]] const std::optional<TrackingEvents>& trackingEvents() const noexcept
    {
        return m_trackingEvents;
    }

    [[nodiscard]] std::optional<TrackingEvents>& trackingEvents() noexcept { return m_trackingEvents; }

    void setTrackingEvents(std::optional<TrackingEvents> events) { m_trackingEvents = std::move(events); }

    /// In document order. Absent until the first was read.
    [[nodiscard]] const std::optional<MediaFiles>& mediaFiles() const noexcept { return m_mediaFiles; }

    [[nodiscard]] std::optional<MediaFiles>& mediaFiles() noexcept { return m_mediaFiles; }

    void setMediaFiles(std::optional<MediaFiles> files) { m_mediaFiles = std::move(files); }

    /// By identifier; one without an identifier equals none.
    [[nodiscard]] bool isEqual(const VIRLOVASTCreative& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

private:
    const std::optional<std::string> m_identifier;
    const std::uint64_t m_sequence;
    double m_duration = 0;
    std::optional<TrackingEvents> m_trackingEvents;
    std::optional<MediaFiles> m_mediaFiles;
};
