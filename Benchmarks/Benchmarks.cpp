#include "Benchmarks.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::array all{
    Benchmark{"request-layer", benchRequestLayer},
    Benchmark{"public-calls", benchPublicCalls},
    Benchmark{"screen", benchScreen},
    Benchmark{"images", benchImages},
    Benchmark{"host-process", benchHostProcess},
    Benchmark{"core-memory", benchCoreMemory},
    // Before vast-network: the first reader of a document fixes whose certificates all others of the process
    // trust.
    Benchmark{"video-screen", benchVideoScreen},
    Benchmark{"video-process", benchVideoProcess},
    Benchmark{"vast-reading", benchVASTReading},
    Benchmark{"vast-network", benchVASTNetwork},
    Benchmark{"vast-inspect", benchVASTInspect},
};

} // namespace

std::span<const Benchmark> benchmarks()
{
    return all;
}

bool benchmarkNamed(const std::string& name)
{
    return std::any_of(all.begin(), all.end(),
                       [&](const Benchmark& benchmark) { return benchmark.name == name; });
}
