// bench-inside NAME FILE: runs the benchmark of that name in this process, which has the library in it, and
// writes what it found to FILE.
// bench-inside images FOLDER COUNT: draws ads' images into FOLDER, bench-0.jpg to bench-COUNT.jpg, where
// they are not there yet.

#include "Benchmarks.h"
#include "TestImages.h"

#include "VIRLOAdStoryboardScreens.h"

#include <QGuiApplication>

#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace
{

constexpr std::array inside{
    Benchmark{"request-layer", benchRequestLayer},
    Benchmark{"public-calls", benchPublicCalls},
    Benchmark{"screen", benchScreen},
    Benchmark{"form", benchForm},
    Benchmark{"images", benchImages},
    Benchmark{"video-screen", benchVideoScreen},
    Benchmark{"vast-reading", benchVASTReading},
    Benchmark{"vast-network", benchVASTNetwork},
};

int drawImages(const std::filesystem::path& folder, int last)
{
    std::filesystem::create_directories(folder);
    for (int number = 0; number <= last; ++number) {
        const auto path = folder / ("bench-" + std::to_string(number) + ".jpg");
        if (!std::filesystem::exists(path))
            std::ofstream(path, std::ios::binary) << adImage(number);
    }
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    VIRLOAdStoryboardScreens::start();
    QGuiApplication application(count, arguments);
    const std::string name = count > 2 ? arguments[1] : "";
    try {
        if (name == "images" && count == 4)
            return drawImages(arguments[2], std::stoi(arguments[3]));
        for (const Benchmark& benchmark : inside) {
            if (name != benchmark.name)
                continue;
            const std::string output = std::filesystem::absolute(arguments[2]).string();
            Results results;
            benchmark.run(results);
            return results.write(output) ? 0 : 1;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench: %s: %s\n", name.c_str(), error.what());
        return 1;
    }
    return 2;
}
