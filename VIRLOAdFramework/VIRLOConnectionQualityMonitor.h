#pragma once

#include "SerialQueue.h"
#include "VIRLOConnectionMeasurement.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// Estimates the network's speed from the library's own traffic: every image download is a probe, and each
/// session ping reports the average to the server. A probe is valid if it has completed without an error and
/// has at least `minimumUsableProbeSize`; only valid ones count. Probes are kept until the process ends. Any
/// thread.
///
/// Averages are time-weighted (all bits divided by all seconds). Plain ones are in bits per second; K, M and
/// G are units of 1024, 1024² and 1024³ bits per second. Without a valid probe an average is NaN.
class VIRLOConnectionQualityMonitor
{
public:
    using Measurements = std::vector<std::shared_ptr<VIRLOConnectionMeasurement>>;
    using Predicate = std::function<bool(const VIRLOConnectionMeasurement&)>;

    static const char* const kSyncQueue;
    /// Bits: 200 KiB.
    static constexpr std::uint64_t minimumUsableProbeSize = 1638400;

    [[nodiscard]] static std::shared_ptr<VIRLOConnectionQualityMonitor> sharedMonitor();

    VIRLOConnectionQualityMonitor(const VIRLOConnectionQualityMonitor&) = delete;
    VIRLOConnectionQualityMonitor& operator=(const VIRLOConnectionQualityMonitor&) = delete;

    /// A new probe, started now. The caller reports the transfer's end to it.
    [[nodiscard]] std::shared_ptr<VIRLOConnectionMeasurement> probeDownload();
    [[nodiscard]] std::shared_ptr<VIRLOConnectionMeasurement> probeUpload();
    void addDownloadMeasurement(std::shared_ptr<VIRLOConnectionMeasurement> measurement);
    void addUploadMeasurement(std::shared_ptr<VIRLOConnectionMeasurement> measurement);
    /// Snapshots, oldest first.
    [[nodiscard]] Measurements measurementsDownload() const;
    [[nodiscard]] Measurements measurementsUpload() const;

    [[nodiscard]] float averageDownloadSpeed() const;
    [[nodiscard]] float averageDownloadSpeedK() const;
    [[nodiscard]] float averageDownloadSpeedM() const;
    [[nodiscard]] float averageDownloadSpeedG() const;
    [[nodiscard]] float averageUploadSpeed() const;
    [[nodiscard]] float averageUploadSpeedK() const;
    [[nodiscard]] float averageUploadSpeedM() const;
    [[nodiscard]] float averageUploadSpeedG() const;

    /// Over the last `count` valid probes, or as many as there are.
    [[nodiscard]] float averageDownloadSpeedDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageDownloadSpeedKDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageDownloadSpeedMDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageDownloadSpeedGDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageUploadSpeedDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageUploadSpeedKDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageUploadSpeedMDuringLastRequests(std::size_t count) const;
    [[nodiscard]] float averageUploadSpeedGDuringLastRequests(std::size_t count) const;

    /// Over the valid probes that completed in the last `seconds`.
    [[nodiscard]] float averageDownloadSpeedOverLastInterval(double seconds) const;
    [[nodiscard]] float averageDownloadSpeedKOverLastInterval(double seconds) const;
    [[nodiscard]] float averageDownloadSpeedMOverLastInterval(double seconds) const;
    [[nodiscard]] float averageDownloadSpeedGOverLastInterval(double seconds) const;
    [[nodiscard]] float averageUploadSpeedOverLastInterval(double seconds) const;
    [[nodiscard]] float averageUploadSpeedKOverLastInterval(double seconds) const;
    [[nodiscard]] float averageUploadSpeedMOverLastInterval(double seconds) const;
    [[nodiscard]] float averageUploadSpeedGOverLastInterval(double seconds) const;

    /// Over the valid probes of the list.
    [[nodiscard]] static float averageSpeedFromArray(const Measurements& measurements);
    /// Over all probes of the list.
    [[nodiscard]] static float averageSpeedForValidMeasurements(const Measurements& measurements);
    [[nodiscard]] static Predicate validProbePredicate();
    /// Named after downloads, used for uploads as well.
    [[nodiscard]] static float
    averageDownloadSpeedDuringLastRequestsForMeasurements(std::size_t count,
                                                          const Measurements& measurements);
    [[nodiscard]] static float
    averageDownloadSpeedOverLastIntervalForMeasurements(double seconds, const Measurements& measurements);

private:
    VIRLOConnectionQualityMonitor();
    static std::shared_ptr<VIRLOConnectionQualityMonitor> initPrivate();

    mutable virlo::SerialQueue m_syncQueue;
    Measurements m_measurementsDownload;
    Measurements m_measurementsUpload;
};
