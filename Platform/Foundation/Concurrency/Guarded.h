#pragma once

#include <functional>

namespace virlo
{

/// Runs work that was handed to a queue, a clock or a loop. An exception that leaves it is a fault of that
/// work alone: it is written to the system's log with `where` and goes no further, so it cannot end the host.
/// Any thread.
void runGuarded(const std::function<void()>& work, const char* where) noexcept;

} // namespace virlo
