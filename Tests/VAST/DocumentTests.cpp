#include "AdsReport.h"
#include "VIRLOVASTDocumentReader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace virlo::test
{
namespace
{

std::filesystem::path documents()
{
    const char* const folder = std::getenv("VIRLO_VAST_DOCUMENTS");
    return folder != nullptr ? folder : "Documents";
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(RecordedDocuments, GiveTheRecordsOfTheJSONFilesBesideThem)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(documents())) {
        if (entry.path().extension() != ".xml")
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        VIRLOVASTDocumentReader reader;
        EXPECT_TRUE(reader.parse(contentOf(entry.path())));
        auto expected = entry.path();
        expected.replace_extension(".json");
        // As text with line breaks: googletest then prints the lines that differ.
        EXPECT_EQ(AdsReport::ads(reader.advertisements()).dump(2),
                  AdsReport::JSON::parse(contentOf(expected)).dump(2));
        ++count;
    }
    EXPECT_GE(count, 10);
}

} // namespace
} // namespace virlo::test
