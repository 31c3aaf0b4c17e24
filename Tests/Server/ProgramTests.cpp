#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <httplib.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using testing::HasSubstr;

namespace
{

class Program : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::getenv("AD_SERVER_PROGRAM"))
            GTEST_SKIP() << "AD_SERVER_PROGRAM names no program";
    }

    /// Output of both kinds goes to the file "output".
    void start(std::vector<std::string> words)
    {
        words.insert(words.begin(), std::getenv("AD_SERVER_PROGRAM"));
        std::vector<char*> arguments;
        for (auto& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        const auto output = folder.path("output");
        process = ::fork();
        if (process == 0) {
            const int file = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            ::dup2(file, STDOUT_FILENO);
            ::dup2(file, STDERR_FILENO);
            ::execv(arguments[0], arguments.data());
            ::_exit(127);
        }
    }

    [[nodiscard]] int exitStatus() const
    {
        int status = 0;
        ::waitpid(process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    [[nodiscard]] std::string output() const { return folder.read("output").value_or(""); }

    virlo::test::TemporaryFolder folder;
    pid_t process = -1;
};

} // namespace

TEST_F(Program, ServesUntilASignalAndStopsCleanly)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        folder.write("campaigns/wrong.json", "{}");
        start({"--port", "0", "--state", folder.path("state"), "--campaigns", folder.path("campaigns"),
               "--ready-file", folder.path("ready"), "--log", folder.path("log.jsonl")});
        for (int wait = 0; wait < 500 && !folder.read("ready"); ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        auto url = folder.read("ready").value_or("");
        ASSERT_THAT(url, testing::StartsWith("https://localhost:"));
        url.pop_back();
        httplib::Client client(url);
        client.set_ca_cert_path(folder.path("state/authority.pem"));
        EXPECT_TRUE(client.Get("/nowhere"));
        ::kill(process, signal);
        EXPECT_EQ(exitStatus(), 0);
        EXPECT_THAT(output(), HasSubstr("listening on " + url + "\n"));
        EXPECT_THAT(output(), HasSubstr(folder.path("state/authority.pem")));
        EXPECT_THAT(output(), HasSubstr("wrong.json: rules: is missing"));
        EXPECT_THAT(folder.read("log.jsonl").value_or(""), HasSubstr("/nowhere"));
        ::unlink(folder.path("ready").c_str());
    }
}

TEST_F(Program, SaysWhatIsWrongWithItsUse)
{
    folder.write("campaigns/wrong.json", "{}");

    const struct {
        std::vector<std::string> words;
        int status;
        std::string message;
    } rows[] = {
        {{"--help"}, 0, "Usage: ad-server"},
        {{"--port", "99999"}, 2, "--port takes a whole number from 0 to 65535, not \"99999\""},
        {{"--port"}, 2, "--port needs a value"},
        {{"--loud"}, 2, "there is no option \"--loud\""},
        {{"--ping-interval", "soon"}, 2, "--ping-interval takes seconds"},
        {{"--check-campaigns", "--campaigns", folder.path("campaigns")}, 2, "wrong.json: rules: is missing"},
        {{"--http", "--port", "0", "--campaigns", folder.path("nowhere")},
         1,
         "cannot read the campaigns folder"},
    };

    for (const auto& row : rows) {
        start(row.words);
        EXPECT_EQ(exitStatus(), row.status);
        EXPECT_THAT(output(), HasSubstr(row.message));
    }
}
