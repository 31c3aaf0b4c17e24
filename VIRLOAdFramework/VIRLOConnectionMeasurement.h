#pragma once

#include "Clock.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

/// One timed transfer. Created and kept by VIRLOConnectionQualityMonitor; whoever transfers reports the end.
/// Any thread.
class VIRLOConnectionMeasurement
{
public:
    /// Started now.
    VIRLOConnectionMeasurement();
    VIRLOConnectionMeasurement(const VIRLOConnectionMeasurement&) = delete;
    VIRLOConnectionMeasurement& operator=(const VIRLOConnectionMeasurement&) = delete;

    void start();
    /// The transfer ended now, with this many bytes.
    void registerNumberOfBytes(std::uint64_t bytes);
    /// `duration` in seconds.
    void registerNumberOfBytesWithDuration(std::uint64_t bytes, double duration);
    void registerError();

    /// Seconds since 2001-01-01 00:00 UTC. A start time in the future counts as now.
    [[nodiscard]] double startTime() const;
    void setStartTime(double startTime);
    [[nodiscard]] bool completed() const;
    /// The name keeps its spelling.
    [[nodiscard]] bool errorOccured() const;
    /// Bits per second, and in units of 1024, 1024² and 1024³ bits per second. 0 until completed.
    [[nodiscard]] float speed() const;
    [[nodiscard]] float speedK() const;
    [[nodiscard]] float speedM() const;
    [[nodiscard]] float speedG() const;
    /// Seconds.
    [[nodiscard]] double timeInterval() const;
    [[nodiscard]] std::uint64_t bitsTransmitted() const;
    /// When it completed.
    [[nodiscard]] std::optional<virlo::Date> time() const;

    [[nodiscard]] std::string description() const;

private:
    mutable std::mutex m_mutex;
    double m_startTime = 0;
    /// The same moment on the monotonic clock, by which durations are measured.
    virlo::Clock::Instant m_startInstant;
    bool m_completed = false;
    bool m_errorOccured = false;
    float m_speed = 0;
    double m_timeInterval = 0;
    std::uint64_t m_bitsTransmitted = 0;
    std::optional<virlo::Date> m_time;
};
