#pragma once

#include "Clock.h"

#include <memory>

namespace virlo::test
{

/// A clock that moves by `advance` only. Set from its making to its end; one at a time. What is still
/// scheduled when it ends never runs; handles may outlive it. `schedule`, `now` and `date` from any thread.
class TestClock : public Clock
{
public:
    /// What `advance` does before each due call and after the last.
    enum class Settling {
        Full, ///< `settleAll`
        None, ///< nothing: for tests that hold a queue or a worker on purpose
    };

    /// Starts at `start`, by default 2016-03-01 10:20:30 UTC.
    explicit TestClock(Date start = Date(std::chrono::seconds(1456827630)));
    ~TestClock() override;
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    [[nodiscard]] Instant now() const override;
    [[nodiscard]] Date date() const override;
    /// Due work runs inside `advance`, never here; also with a delay of 0 it waits for the next `advance`,
    /// which may be `advance(Seconds(0))`.
    std::shared_ptr<Scheduled> schedule(Seconds delay, std::function<void()> work) override;

    /// Moves the time on by `by` and makes the calls that come due, at their times, on the caller's thread,
    /// in order of due time and then of scheduling; also those that they schedule within the span.
    void advance(Seconds by, Settling settling = Settling::Full);

    /// The number of scheduled calls that are neither run nor cancelled.
    [[nodiscard]] std::size_t pendingCount() const;

private:
    class State;
    class Entry;
    std::shared_ptr<State> m_state;
};

} // namespace virlo::test
