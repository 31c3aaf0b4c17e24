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
    Benchmark{"vast-reading", benchVASTReading},
    Benchmark{"vast-network", benchVASTNetwork},
    Benchmark{"vast-inspect", benchVASTInspect},
    Benchmark{"video-screen", benchVideoScreen},
    Benchmark{"video-process", benchVideoProcess},
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
