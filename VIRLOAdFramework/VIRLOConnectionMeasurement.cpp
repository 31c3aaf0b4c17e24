#include "VIRLOConnectionMeasurement.h"

#include "ReferenceDate.h"
#include "StringFormat.h"

using virlo::Clock;

namespace
{
double secondsSinceReferenceDate()
{
    return virlo::ReferenceDate::secondsFromDate(Clock::shared().date());
}
} // namespace

VIRLOConnectionMeasurement::VIRLOConnectionMeasurement()
{
    start();
}

void VIRLOConnectionMeasurement::start()
{
    const std::lock_guard lock(m_mutex);
    m_startTime = secondsSinceReferenceDate();
    m_startInstant = Clock::shared().now();
}

void VIRLOConnectionMeasurement::registerNumberOfBytes(std::uint64_t bytes)
{
    double duration = 0;
    {
        const std::lock_guard lock(m_mutex);
        duration = virlo::Seconds(Clock::shared().now() - m_startInstant).count();
    }
    registerNumberOfBytesWithDuration(bytes, duration);
}

void VIRLOConnectionMeasurement::registerNumberOfBytesWithDuration(std::uint64_t bytes, double duration)
{
    const std::lock_guard lock(m_mutex);
    m_timeInterval = duration;
    m_bitsTransmitted = bytes * 8;
    m_speed = static_cast<float>(static_cast<double>(m_bitsTransmitted) * (1.0 / duration));
    m_completed = true;
    m_time = Clock::shared().date();
}

void VIRLOConnectionMeasurement::registerError()
{
    const std::lock_guard lock(m_mutex);
    m_errorOccured = true;
}

double VIRLOConnectionMeasurement::startTime() const
{
    const std::lock_guard lock(m_mutex);
    return m_startTime;
}

void VIRLOConnectionMeasurement::setStartTime(double startTime)
{
    const std::lock_guard lock(m_mutex);
    const virlo::Seconds ago(secondsSinceReferenceDate() - startTime);
    m_startTime = startTime;
    m_startInstant = Clock::shared().now() - Clock::ticks(ago);
}

bool VIRLOConnectionMeasurement::completed() const
{
    const std::lock_guard lock(m_mutex);
    return m_completed;
}

bool VIRLOConnectionMeasurement::errorOccured() const
{
    const std::lock_guard lock(m_mutex);
    return m_errorOccured;
}

float VIRLOConnectionMeasurement::speed() const
{
    const std::lock_guard lock(m_mutex);
    return m_speed;
}

float VIRLOConnectionMeasurement::speedK() const
{
    return speed() * 0x1p-10F;
}

float VIRLOConnectionMeasurement::speedM() const
{
    return speed() * 0x1p-20F;
}

float VIRLOConnectionMeasurement::speedG() const
{
    return speed() * 0x1p-30F;
}

double VIRLOConnectionMeasurement::timeInterval() const
{
    const std::lock_guard lock(m_mutex);
    return m_timeInterval;
}

std::uint64_t VIRLOConnectionMeasurement::bitsTransmitted() const
{
    const std::lock_guard lock(m_mutex);
    return m_bitsTransmitted;
}

std::optional<virlo::Date> VIRLOConnectionMeasurement::time() const
{
    const std::lock_guard lock(m_mutex);
    return m_time;
}

std::string VIRLOConnectionMeasurement::description() const
{
    const std::lock_guard lock(m_mutex);
    return virlo::format("<VIRLOConnectionMeasurement:, bitsTransmitted=%lu, time=%@, startTime=%lf>",
                         m_bitsTransmitted, m_time, m_startTime);
}
