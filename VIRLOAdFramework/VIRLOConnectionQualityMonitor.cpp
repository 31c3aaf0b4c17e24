#include "VIRLOConnectionQualityMonitor.h"

#include "ReferenceDate.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

using virlo::Clock;

const char* const VIRLOConnectionQualityMonitor::kSyncQueue = "com.virlohq.VIRLOConnectionQualityMonitor";

namespace
{
constexpr float kilo = 0x1p-10F;
constexpr float mega = 0x1p-20F;
constexpr float giga = 0x1p-30F;
} // namespace

VIRLOConnectionQualityMonitor::VIRLOConnectionQualityMonitor() : m_syncQueue(kSyncQueue) {}

std::shared_ptr<VIRLOConnectionQualityMonitor> VIRLOConnectionQualityMonitor::sharedMonitor()
{
    static const auto& shared = *new std::shared_ptr<VIRLOConnectionQualityMonitor>(initPrivate());
    return shared;
}

std::shared_ptr<VIRLOConnectionQualityMonitor> VIRLOConnectionQualityMonitor::initPrivate()
{
    return std::shared_ptr<VIRLOConnectionQualityMonitor>(new VIRLOConnectionQualityMonitor);
}

std::shared_ptr<VIRLOConnectionMeasurement> VIRLOConnectionQualityMonitor::probeDownload()
{
    auto measurement = std::make_shared<VIRLOConnectionMeasurement>();
    addDownloadMeasurement(measurement);
    return measurement;
}

std::shared_ptr<VIRLOConnectionMeasurement> VIRLOConnectionQualityMonitor::probeUpload()
{
    auto measurement = std::make_shared<VIRLOConnectionMeasurement>();
    addUploadMeasurement(measurement);
    return measurement;
}

void VIRLOConnectionQualityMonitor::addDownloadMeasurement(
    std::shared_ptr<VIRLOConnectionMeasurement> measurement)
{
    m_syncQueue.sync([&] { m_measurementsDownload.push_back(std::move(measurement)); });
}

void VIRLOConnectionQualityMonitor::addUploadMeasurement(
    std::shared_ptr<VIRLOConnectionMeasurement> measurement)
{
    m_syncQueue.sync([&] { m_measurementsUpload.push_back(std::move(measurement)); });
}

VIRLOConnectionQualityMonitor::Measurements VIRLOConnectionQualityMonitor::measurementsDownload() const
{
    return m_syncQueue.read([this] { return m_measurementsDownload; });
}

VIRLOConnectionQualityMonitor::Measurements VIRLOConnectionQualityMonitor::measurementsUpload() const
{
    return m_syncQueue.read([this] { return m_measurementsUpload; });
}

VIRLOConnectionQualityMonitor::Predicate VIRLOConnectionQualityMonitor::validProbePredicate()
{
    return [](const VIRLOConnectionMeasurement& measurement) {
        return measurement.completed() && !measurement.errorOccured() &&
               measurement.bitsTransmitted() >= minimumUsableProbeSize;
    };
}

float VIRLOConnectionQualityMonitor::averageSpeedForValidMeasurements(const Measurements& measurements)
{
    if (measurements.empty())
        return std::numeric_limits<float>::quiet_NaN();
    double bits = 0;
    double seconds = 0;
    for (const auto& measurement : measurements) {
        bits += static_cast<double>(measurement->bitsTransmitted());
        seconds += measurement->timeInterval();
    }
    return static_cast<float>(bits * (1.0 / seconds));
}

float VIRLOConnectionQualityMonitor::averageSpeedFromArray(const Measurements& measurements)
{
    return averageDownloadSpeedDuringLastRequestsForMeasurements(measurements.size(), measurements);
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedDuringLastRequestsForMeasurements(
    std::size_t count, const Measurements& measurements)
{
    const Predicate isValid = validProbePredicate();
    Measurements valid;
    std::ranges::copy_if(measurements, std::back_inserter(valid),
                         [&](const auto& each) { return isValid(*each); });
    if (valid.size() > count)
        valid.erase(valid.begin(), valid.end() - static_cast<std::ptrdiff_t>(count));
    return averageSpeedForValidMeasurements(valid);
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedOverLastIntervalForMeasurements(
    double seconds, const Measurements& measurements)
{
    const Predicate isValid = validProbePredicate();
    // In floating point: the device's clock may be set to any date between two measurements.
    const double now = virlo::ReferenceDate::secondsFromDate(Clock::shared().date());
    Measurements recent;
    std::ranges::copy_if(measurements, std::back_inserter(recent), [&](const auto& each) {
        return isValid(*each) &&
               now - virlo::ReferenceDate::secondsFromDate(each->time().value_or(virlo::Date())) <= seconds;
    });
    return averageSpeedForValidMeasurements(recent);
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeed() const
{
    return averageSpeedFromArray(measurementsDownload());
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedK() const
{
    return averageDownloadSpeed() * kilo;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedM() const
{
    return averageDownloadSpeed() * mega;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedG() const
{
    return averageDownloadSpeed() * giga;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeed() const
{
    return averageSpeedFromArray(measurementsUpload());
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedK() const
{
    return averageUploadSpeed() * kilo;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedM() const
{
    return averageUploadSpeed() * mega;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedG() const
{
    return averageUploadSpeed() * giga;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedDuringLastRequests(std::size_t count) const
{
    return averageDownloadSpeedDuringLastRequestsForMeasurements(count, measurementsDownload());
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedKDuringLastRequests(std::size_t count) const
{
    return averageDownloadSpeedDuringLastRequests(count) * kilo;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedMDuringLastRequests(std::size_t count) const
{
    return averageDownloadSpeedDuringLastRequests(count) * mega;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedGDuringLastRequests(std::size_t count) const
{
    return averageDownloadSpeedDuringLastRequests(count) * giga;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedDuringLastRequests(std::size_t count) const
{
    return averageDownloadSpeedDuringLastRequestsForMeasurements(count, measurementsUpload());
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedKDuringLastRequests(std::size_t count) const
{
    return averageUploadSpeedDuringLastRequests(count) * kilo;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedMDuringLastRequests(std::size_t count) const
{
    return averageUploadSpeedDuringLastRequests(count) * mega;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedGDuringLastRequests(std::size_t count) const
{
    return averageUploadSpeedDuringLastRequests(count) * giga;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedOverLastInterval(double seconds) const
{
    return averageDownloadSpeedOverLastIntervalForMeasurements(seconds, measurementsDownload());
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedKOverLastInterval(double seconds) const
{
    return averageDownloadSpeedOverLastInterval(seconds) * kilo;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedMOverLastInterval(double seconds) const
{
    return averageDownloadSpeedOverLastInterval(seconds) * mega;
}

float VIRLOConnectionQualityMonitor::averageDownloadSpeedGOverLastInterval(double seconds) const
{
    return averageDownloadSpeedOverLastInterval(seconds) * giga;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedOverLastInterval(double seconds) const
{
    return averageDownloadSpeedOverLastIntervalForMeasurements(seconds, measurementsUpload());
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedKOverLastInterval(double seconds) const
{
    return averageUploadSpeedOverLastInterval(seconds) * kilo;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedMOverLastInterval(double seconds) const
{
    return averageUploadSpeedOverLastInterval(seconds) * mega;
}

float VIRLOConnectionQualityMonitor::averageUploadSpeedGOverLastInterval(double seconds) const
{
    return averageUploadSpeedOverLastInterval(seconds) * giga;
}
