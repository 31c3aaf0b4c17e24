#pragma once

#include <functional>

namespace virlo
{

/// Runs work of a queue, a clock or a loop. An exception that leaves it is caught and written to the system's
/// log with `where`, so that it cannot end the host. Any thread.
void runGuarded(const std::function<void()>& work, const char* where) noexcept;

} // namespace virlo
