#include "Benchmarks.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::array all{
    Benchmark{"request-layer", nullptr},
    Benchmark{"public-calls", nullptr},
    Benchmark{"screen", nullptr},
    Benchmark{"form", nullptr},
    Benchmark{"images", nullptr},
    Benchmark{"host-process", benchHostProcess},
    Benchmark{"interstitial", benchInterstitial},
    Benchmark{"app-grid", benchAppGrid},
    Benchmark{"core-memory", benchCoreMemory},
    Benchmark{"video-screen", nullptr},
    Benchmark{"video-process", benchVideoProcess},
    Benchmark{"vast-reading", nullptr},
    Benchmark{"vast-network", nullptr},
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
