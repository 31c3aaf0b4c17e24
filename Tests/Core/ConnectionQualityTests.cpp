#include "TestClock.h"
#include "VIRLOConnectionQualityMonitor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

namespace virlo::test
{
namespace
{

using Monitor = VIRLOConnectionQualityMonitor;

constexpr std::uint64_t megabit = 1'000'000;

class ConnectionQuality : public testing::Test
{
protected:
    std::shared_ptr<VIRLOConnectionMeasurement> add()
    {
        probes.push_back(std::make_shared<VIRLOConnectionMeasurement>());
        return probes.back();
    }

    /// A probe of so many bits that took so many seconds and completes now.
    void add(std::uint64_t bits, double seconds)
    {
        add()->registerNumberOfBytesWithDuration(bits / 8, seconds);
    }

    [[nodiscard]] float average() const { return Monitor::averageSpeedFromArray(probes); }

    [[nodiscard]] float last(std::size_t count) const
    {
        return Monitor::averageDownloadSpeedDuringLastRequestsForMeasurements(count, probes);
    }

    [[nodiscard]] float during(double seconds) const
    {
        return Monitor::averageDownloadSpeedOverLastIntervalForMeasurements(seconds, probes);
    }

    std::optional<TestClock> clock{std::in_place};
    Monitor::Measurements probes;
};

TEST_F(ConnectionQuality, AverageIsNaNWithoutAValidProbe)
{
    add(204799 * 8, 1);
    add()->start(); // does not complete
    const auto failed = add();
    failed->registerNumberOfBytes(1'000'000);
    failed->registerError();
    EXPECT_TRUE(std::isnan(average()) && std::isnan(last(10)) && std::isnan(during(60)));
    add(204800 * 8, 2);
    EXPECT_EQ(average(), 819200);
}

TEST_F(ConnectionQuality, AveragesAreWeightedByTime)
{
    add(2 * megabit, 1);
    add(6 * megabit, 3);
    EXPECT_FLOAT_EQ(average(), 2 * megabit);
    add(8 * megabit, 12);
    EXPECT_FLOAT_EQ(average(), megabit);
}

TEST_F(ConnectionQuality, LastRequestsAreTheLastValidOnes)
{
    add(100 * megabit, 1);
    add(2 * megabit, 1);
    add(8, 1); // too small
    add(4 * megabit, 1);
    EXPECT_FLOAT_EQ(last(2), 3 * megabit);
    EXPECT_FLOAT_EQ(last(10), 106 * megabit / 3.0F);
    EXPECT_TRUE(std::isnan(last(0)));
}

TEST_F(ConnectionQuality, IntervalCountsFromTheCompletion)
{
    const auto early = add();
    clock->advance(Seconds(4));
    early->registerNumberOfBytes(megabit);
    EXPECT_DOUBLE_EQ(early->timeInterval(), 4);
    EXPECT_FLOAT_EQ(early->speedK(), 2 * megabit / 1024.0F);
    EXPECT_EQ(early->description(), "<VIRLOConnectionMeasurement:, bitsTransmitted=8000000, "
                                    "time=2016-03-01 10:20:34 +0000, startTime=478520430.000000>");
    clock->advance(Seconds(10));
    add(8 * megabit, 1);
    EXPECT_FLOAT_EQ(during(9.9), 8 * megabit);
    EXPECT_FLOAT_EQ(during(10), 16 * megabit / 5.0F);
}

TEST_F(ConnectionQuality, ClockSetToTheEndsOfTimeOverflowsNothing)
{
    add(2 * megabit, 1);
    clock.emplace(Date::max());
    add(2 * megabit, 1);
    add()->setStartTime(-1e300);
    clock.emplace(Date::min());
    add(4 * megabit, 1);
    add()->setStartTime(1e300);
    EXPECT_FLOAT_EQ(during(60), 8 * megabit / 3.0F) << "probes dated in the future count";
}

} // namespace
} // namespace virlo::test
