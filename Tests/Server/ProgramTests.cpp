#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>

/// Starting, serving and stopping at a signal are what `scripts/demo` does with it.
TEST(Program, SaysWhatIsWrongWithItsUse)
{
    const virlo::test::TemporaryFolder folder;
    folder.write("campaigns/wrong.json", "{}");

    const struct {
        std::string words;
        int status;
        std::string message;
    } rows[] = {
        {"--help", 0, "Usage: ad-server"},
        {"--port 99999", 2, "--port takes a whole number from 0 to 65535, not \"99999\""},
        {"--port", 2, "--port needs a value"},
        {"--loud", 2, "there is no option \"--loud\""},
        {"--check-campaigns --campaigns " + folder.path("campaigns"), 2, "wrong.json: rules: is missing"},
        {"--http --port 0 --campaigns " + folder.path("nowhere"), 1, "cannot read the campaigns folder"},
        {"--http --port 0 --log " + folder.path("no/log.jsonl"), 1, "cannot write the log"},
    };

    for (const auto& row : rows) {
        std::FILE* const output =
            ::popen((std::string(std::getenv("AD_SERVER_PROGRAM")) + ' ' + row.words + " 2>&1").c_str(), "r");
        std::string text;
        std::array<char, 4096> buffer{};
        while (const auto count = std::fread(buffer.data(), 1, buffer.size(), output))
            text.append(buffer.data(), count);
        EXPECT_EQ(WEXITSTATUS(::pclose(output)), row.status) << row.words;
        EXPECT_THAT(text, testing::HasSubstr(row.message));
    }
}
