#pragma once

namespace virlo
{

/// Returns to the system what the C library keeps of freed memory: decoders free megabytes on one thread
/// after another, and the C library keeps some for each. Does nothing in a process with a large heap, where
/// the main thread would wait for it. Some milliseconds; on a worker.
void returnFreeMemory();

} // namespace virlo
