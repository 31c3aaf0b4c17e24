#include "Benchmarks.h"
#include "ChildProcess.h"
#include "VASTDocuments.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

void benchVASTInspect(Results& results)
{
    const auto file = std::filesystem::temp_directory_path() / "virlo-bench-vast-inspect.xml";
    if (!(std::ofstream(file, std::ios::binary) << VASTDocuments::small(1).texts.front()).flush())
        throw std::runtime_error("the document cannot be written");
    ChildProcess process({programFolder() + "/bench-run", programFolder() + "/vast-inspect", file.string()});
    std::istringstream figures(process.readLine());
    double milliseconds = 0;
    double mebibytes = 0;
    if (!(figures >> milliseconds >> mebibytes))
        throw std::runtime_error("vast-inspect cannot be measured");
    results.addLimit("vast-inspect on a document of 3 KB, whole process", milliseconds, "ms", 10);
    results.addLimit("vast-inspect on a document of 3 KB, most memory", mebibytes, "MiB", 12);
}
