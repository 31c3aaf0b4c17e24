#pragma once

#include "Results.h"

#include <span>
#include <string>

/// One subject of measurement; `run` adds its lines to the results.
struct Benchmark {
    const char* name;
    void (*run)(Results&);
};

[[nodiscard]] std::span<const Benchmark> benchmarks();
[[nodiscard]] bool benchmarkNamed(const std::string& name);

void benchRequestLayer(Results& results);
void benchPublicCalls(Results& results);
void benchScreen(Results& results);
void benchImages(Results& results);
void benchHostProcess(Results& results);
void benchCoreMemory(Results& results);
void benchVASTReading(Results& results);
void benchVASTNetwork(Results& results);
void benchVASTInspect(Results& results);
void benchVideoScreen(Results& results);
void benchVideoProcess(Results& results);
