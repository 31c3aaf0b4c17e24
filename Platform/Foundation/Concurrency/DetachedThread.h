#pragma once

#include <functional>

namespace virlo
{

/// Starts a thread that nobody joins and that blocks all signals. False where the system gives no more
/// threads; `body` then never runs. `name` is at most 15 bytes.
[[nodiscard]] bool startDetachedThread(const char* name, std::function<void()> body);

} // namespace virlo
