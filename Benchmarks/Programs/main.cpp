#include "Benchmarks.h"
#include "ChildProcess.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace
{

/// Where everything that is measured keeps its files; gone at the end.
struct WorkFolder {
    WorkFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "virlo-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no folder to work in");
        path = name;
        setenv("XDG_DATA_HOME", (path / "data").c_str(), 1);
        setenv("XDG_CACHE_HOME", (path / "cache").c_str(), 1);
    }

    ~WorkFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path path;
};

void run(const Benchmark& benchmark, Results& results, const WorkFolder& folder)
{
    if (benchmark.run != nullptr) {
        benchmark.run(results);
        return;
    }
    const std::string found = folder.path / "found.json";
    ChildProcess inside({programFolder() + "/bench-inside", benchmark.name, found});
    if (inside.awaitEnd() != 0 || !results.read(found))
        throw std::runtime_error("it failed");
}

} // namespace

// Runs the benchmarks named on the command line, or all of them, and writes what they found. One that fails
// is named at the end and takes nothing from the others.
int main(int count, char** arguments)
{
    std::string output = "results.json";
    std::vector<std::string> wanted;
    for (int index = 1; index < count; ++index) {
        if (std::strcmp(arguments[index], "--output") == 0 && index + 1 < count)
            output = arguments[++index];
        else if (std::strcmp(arguments[index], "--once") == 0)
            setenv("VIRLO_BENCH_ONCE", "1", 1); // for the programs that it starts, too
        else
            wanted.emplace_back(arguments[index]);
    }
    for (const std::string& name : wanted) {
        if (!benchmarkNamed(name)) {
            std::fprintf(stderr, "bench: no benchmark '%s'; there are:\n", name.c_str());
            for (const Benchmark& benchmark : benchmarks())
                std::fprintf(stderr, "  %s\n", benchmark.name);
            return 2;
        }
    }

    // Benchmarks may go to folders of their own.
    output = std::filesystem::absolute(output).string();
    const WorkFolder folder;
    Results results;
    std::string failed;
    for (const Benchmark& benchmark : benchmarks()) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), benchmark.name) == wanted.end())
            continue;
        std::fprintf(stderr, "bench: %s\n", benchmark.name);
        try {
            run(benchmark, results, folder);
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
