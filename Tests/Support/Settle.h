#pragma once

#include "Clock.h"

#include <functional>

namespace virlo::test
{

/// Pumps the main loop until `predicate` holds, at most `limit` of real time; the answer is the predicate's
/// last. It is asked often, so it may look at what other threads change (under their locks). Main thread.
[[nodiscard]] bool settle(const std::function<bool()>& predicate, Seconds limit = Seconds(10));

/// Runs what is posted to the main loop, and what that posts in turn before it is reached. Main thread.
void pumpMainLoop();

/// Drains the queues and pumps the main loop in turn until neither has work left, at most `limit` of real
/// time; the answer tells whether that came about. Off the main thread the loop is not pumped. What waits for
/// the network, for a clock or for a held call is not waited for.
bool settleAll(Seconds limit = Seconds(10));

} // namespace virlo::test
