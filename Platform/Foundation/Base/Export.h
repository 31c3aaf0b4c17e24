#pragma once

/// Marks what a host may link against; everything else of the shared library stays hidden.
#define VIRLO_EXPORT __attribute__((visibility("default")))
