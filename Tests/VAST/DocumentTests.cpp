#include "AdsReport.h"
#include "RowName.h"
#include "VIRLOVASTDocumentReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
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

class RecordedDocument : public testing::TestWithParam<std::string>
{
};

TEST_P(RecordedDocument, GivesTheRecordsOfTheJSONFileBesideIt)
{
    VIRLOVASTDocumentReader reader;
    EXPECT_TRUE(reader.parse(contentOf(documents() / (GetParam() + ".xml"))));
    // As text with line breaks: googletest then prints the lines that differ.
    EXPECT_EQ(AdsReport::ads(reader.advertisements()).dump(2),
              AdsReport::JSON::parse(contentOf(documents() / (GetParam() + ".json"))).dump(2));
}

std::vector<std::string> recorded()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(documents())) {
        if (entry.path().extension() == ".xml")
            names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Documents, RecordedDocument, testing::ValuesIn(recorded()), [](const auto& row) {
    std::string name = row.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

} // namespace
} // namespace virlo::test
