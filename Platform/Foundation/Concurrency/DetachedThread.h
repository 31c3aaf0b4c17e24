#pragma once

#include <functional>

namespace virlo
{

/// Starts a thread of the library's own that nobody joins. It takes none of the host's signals. False where
/// the system gives no more threads; `body` then never runs. `name` is at most 15 bytes.
[[nodiscard]] bool startDetachedThread(const char* name, std::function<void()> body);

} // namespace virlo
