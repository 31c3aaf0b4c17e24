#pragma once

#include "Clock.h"

#include <functional>

namespace virlo::test
{

/// Runs the main loop until `predicate` is true, at most `limit` of real time; returns its last result. It is
/// called often, so it may read what other threads change (under their locks). Main thread.
[[nodiscard]] bool settle(const std::function<bool()>& predicate, Seconds limit = Seconds(10));

/// Runs what has been posted to the main loop so far. Main thread.
void pumpMainLoop();

/// Drains the queues and runs the main loop in turn until neither has work left, at most `limit` of real
/// time; returns whether that happened. Off the main thread the loop is not run. What waits for the network,
/// a clock or a held call is not waited for.
bool settleAll(Seconds limit = Seconds(10));

} // namespace virlo::test
