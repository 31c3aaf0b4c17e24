#include "AdsReport.h"
#include "VIRLOVASTDocumentReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

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

AdsReport::JSON recordsRead(const std::string& document, std::size_t piece)
{
    VIRLOVASTDocumentReader reader;
    std::string_view rest = document;
    for (; rest.size() > piece; rest.remove_prefix(piece))
        EXPECT_TRUE(reader.read(rest.substr(0, piece)));
    EXPECT_TRUE(reader.finish(rest));
    return AdsReport::ads(reader.advertisements());
}

/// The first line in which two texts differ.
std::string firstDifference(const std::string& one, const std::string& other)
{
    std::istringstream left(one);
    std::istringstream right(other);
    std::string leftLine;
    std::string rightLine;
    for (int line = 1; std::getline(left, leftLine); ++line) {
        if (!std::getline(right, rightLine) || leftLine != rightLine)
            return "line " + std::to_string(line) + "\n  expected " + rightLine + "\n  read     " + leftLine;
    }
    return "the end is missing";
}

class RecordedDocument : public testing::TestWithParam<std::string>
{
};

TEST_P(RecordedDocument, GivesTheRecordsNotedBesideItInWhateverPiecesItArrives)
{
    const std::string document = contentOf(documents() / (GetParam() + ".xml"));
    const std::string expected =
        AdsReport::JSON::parse(contentOf(documents() / (GetParam() + ".json"))).dump(2);
    for (const std::size_t piece : {document.size(), std::size_t{1}, std::size_t{7}}) {
        const std::string found = recordsRead(document, piece).dump(2);
        EXPECT_TRUE(found == expected)
            << "in pieces of " << piece << ": " << firstDifference(found, expected);
    }
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
    std::replace_if(
        name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
    return name;
});

} // namespace
} // namespace virlo::test
