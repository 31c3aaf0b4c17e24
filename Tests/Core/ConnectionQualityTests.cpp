#include "TestClock.h"
#include "VIRLOConnectionQualityMonitor.h"

#include <gtest/gtest.h>

#include <cmath>

namespace virlo::test
{
namespace
{

constexpr std::uint64_t megabit = 1'000'000;

class ConnectionQuality : public testing::Test
{
protected:
    /// A probe of so many bits that took so many seconds and ends now.
    void probe(std::uint64_t bits, double seconds)
    {
        monitor.probeDownload()->registerNumberOfBytesWithDuration(bits / 8, seconds);
    }

    TestClock clock;
    VIRLOConnectionQualityMonitor monitor;
};

TEST_F(ConnectionQuality, WithoutAProbeThatCountsEveryAverageIsNaN)
{
    probe(204799 * 8, 1);
    monitor.probeDownload()->start(); // never ends
    const auto failed = monitor.probeDownload();
    failed->registerNumberOfBytes(1'000'000);
    failed->registerError();
    for (const float average :
         {monitor.averageDownloadSpeed(), monitor.averageDownloadSpeedKDuringLastRequests(10),
          monitor.averageDownloadSpeedMOverLastInterval(60), monitor.averageUploadSpeedG()})
        EXPECT_TRUE(std::isnan(average));

    probe(204800 * 8, 2);
    EXPECT_EQ(monitor.averageDownloadSpeed(), 819200);
    EXPECT_EQ(monitor.averageDownloadSpeedK(), 800);
    EXPECT_EQ(monitor.averageDownloadSpeedM(), 0.78125);
    EXPECT_TRUE(std::isnan(monitor.averageUploadSpeed())) << "uploads count apart";
}

TEST_F(ConnectionQuality, AveragesWeighByTime)
{
    probe(2 * megabit, 1);
    probe(6 * megabit, 3);
    EXPECT_FLOAT_EQ(monitor.averageDownloadSpeed(), 2 * megabit);
    probe(8 * megabit, 12);
    EXPECT_FLOAT_EQ(monitor.averageDownloadSpeed(), megabit);
}

TEST_F(ConnectionQuality, LastRequestsAreTheLastThatCount)
{
    probe(100 * megabit, 1);
    probe(2 * megabit, 1);
    probe(8, 1); // too small to count
    probe(4 * megabit, 1);
    EXPECT_FLOAT_EQ(monitor.averageDownloadSpeedDuringLastRequests(2), 3 * megabit);
    EXPECT_FLOAT_EQ(monitor.averageDownloadSpeedDuringLastRequests(10), 106 * megabit / 3.0F);
    EXPECT_TRUE(std::isnan(monitor.averageDownloadSpeedDuringLastRequests(0)));
}

TEST_F(ConnectionQuality, IntervalCountsByTheMomentOfTheEnd)
{
    const auto early = monitor.probeDownload();
    clock.advance(Seconds(4));
    early->registerNumberOfBytes(megabit);
    EXPECT_DOUBLE_EQ(early->timeInterval(), 4);
    EXPECT_FLOAT_EQ(early->speed(), 2 * megabit);
    clock.advance(Seconds(10));
    probe(8 * megabit, 1);
    EXPECT_FLOAT_EQ(monitor.averageDownloadSpeedOverLastInterval(9.9), 8 * megabit);
    EXPECT_FLOAT_EQ(monitor.averageDownloadSpeedOverLastInterval(10), 16 * megabit / 5.0F);
}

TEST_F(ConnectionQuality, MeasurementDescribesItself)
{
    const auto measurement = monitor.probeDownload();
    measurement->registerNumberOfBytes(2);
    EXPECT_EQ(measurement->description(), "<VIRLOConnectionMeasurement:, bitsTransmitted=16, "
                                          "time=2016-03-01 10:20:30 +0000, startTime=478520430.000000>");
}

} // namespace
} // namespace virlo::test
