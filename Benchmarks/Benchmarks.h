#pragma once

#include "Results.h"

#include <span>
#include <string>

/// One subject of measurement.
struct Benchmark {
    const char* name;
    /// Adds its lines to the results; null for one that needs the library in its own process, which
    /// `bench-inside` has.
    void (*run)(Results&);
};

/// All of them, in the order in which they run.
[[nodiscard]] std::span<const Benchmark> benchmarks();
[[nodiscard]] bool benchmarkNamed(const std::string& name);

// Other processes, measured from this one: it has none of the libraries that they are measured with, or
// their pages would count as shared.
void benchHostProcess(Results& results);
void benchInterstitial(Results& results);
void benchAppGrid(Results& results);
void benchCoreMemory(Results& results);
void benchVideoProcess(Results& results);
void benchVASTInspect(Results& results);

// In `bench-inside`
void benchRequestLayer(Results& results);
void benchPublicCalls(Results& results);
void benchScreen(Results& results);
void benchForm(Results& results);
void benchImages(Results& results);
void benchVASTReading(Results& results);
void benchVASTNetwork(Results& results);
void benchVideoScreen(Results& results);
