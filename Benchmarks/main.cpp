#include "Benchmarks.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>

// Runs the benchmarks named on the command line, or all of them, and writes what they found. One that fails
// is named at the end and takes nothing from the others.
int main(int count, char** arguments)
{
    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", folder.filePath("data").toUtf8());
    qputenv("XDG_CACHE_HOME", folder.filePath("cache").toUtf8());
    QGuiApplication application(count, arguments);

    std::string output = "results.json";
    std::vector<std::string> wanted;
    for (int index = 1; index < count; ++index) {
        if (std::strcmp(arguments[index], "--output") == 0 && index + 1 < count)
            output = arguments[++index];
        else
            wanted.emplace_back(arguments[index]);
    }

    // Benchmarks may go to folders of their own.
    output = std::filesystem::absolute(output).string();
    Results results;
    for (const std::string& name : wanted) {
        if (!benchmarkNamed(name)) {
            std::fprintf(stderr, "bench: no benchmark '%s'; there are:\n", name.c_str());
            for (const Benchmark& benchmark : benchmarks())
                std::fprintf(stderr, "  %s\n", benchmark.name);
            return 2;
        }
    }
    std::string failed;
    for (const Benchmark& benchmark : benchmarks()) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), benchmark.name) == wanted.end())
            continue;
        std::fprintf(stderr, "bench: %s\n", benchmark.name);
        try {
            benchmark.run(results);
        } catch (const std::exception& error) {
            std::fprintf(stderr, "bench: %s: %s\n", benchmark.name, error.what());
            failed += std::string(" ") + benchmark.name;
        }
    }
    results.print();
    const bool written = results.write(output);
    if (!written)
        std::fprintf(stderr, "bench: cannot write %s\n", output.c_str());
    if (!failed.empty())
        std::fprintf(stderr, "bench: failed:%s\n", failed.c_str());
    return written && failed.empty() ? 0 : 1;
}
