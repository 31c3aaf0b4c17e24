#include "FileSystem.h"

#include "Bundle.h"
#include "DiskFileSystem.h"
#include "Exception.h"
#include "Folders.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

class DiskTest : public testing::Test
{
protected:
    [[nodiscard]] static long codeOf(const OptionalError& error) { return error ? error->code : 0; }

    TemporaryFolder m_folder;
    FileSystem& m_disk = FileSystem::shared();
};

TEST_F(DiskTest, DirectoriesArePrivate)
{
    const auto path = m_folder.path("data/app/Library");
    EXPECT_EQ(m_disk.createDirectories(path), std::nullopt);
    EXPECT_EQ(m_disk.createDirectories(path + "/"), std::nullopt) << "present already is success";
    for (const auto& each : {m_folder.path("data"), path}) {
        struct stat found {
        };

        ASSERT_EQ(::stat(each.c_str(), &found), 0);
        EXPECT_EQ(found.st_mode & 0777, 0700U) << each;
    }
}

TEST_F(DiskTest, FileInPlaceOfAFolderIsAnError)
{
    m_folder.write("file", "text");
    const auto error = m_disk.createDirectories(m_folder.path("file/below"));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, FileSystem::errorDomain);
    EXPECT_EQ(error->code, ENOTDIR);
    EXPECT_EQ(error->userInfo.at("Path"), m_folder.path("file"));
    EXPECT_EQ(codeOf(m_disk.createDirectories(m_folder.path("file"))), ENOTDIR);
    EXPECT_EQ(codeOf(m_disk.createDirectories("")), ENOENT);
    EXPECT_EQ(m_folder.read("file"), "text");
}

TEST_F(DiskTest, ReadsWholeRegularFilesWithinTheLimitOnly)
{
    const std::string content(10'000, 'x');
    m_folder.write("file", content);
    EXPECT_EQ(m_disk.read(m_folder.path("file")), content);
    EXPECT_EQ(m_disk.read(m_folder.path("file"), content.size()), content);
    EXPECT_EQ(m_disk.read(m_folder.path("file"), content.size() - 1), std::nullopt);
    EXPECT_EQ(m_disk.read(m_folder.path("missing")), std::nullopt);
    EXPECT_EQ(m_disk.read(m_folder.path()), std::nullopt) << "a folder";
    m_folder.write("empty", "");
    EXPECT_EQ(m_disk.read(m_folder.path("empty")), "");
    // The kernel says size 0 for its own files; the limit must hold for them too.
    EXPECT_GT(m_disk.read("/proc/self/status").value_or("").size(), 100U);
    EXPECT_EQ(m_disk.read("/proc/self/status", 100), std::nullopt);
    EXPECT_EQ(m_disk.read("/dev/zero"), std::nullopt);
    ASSERT_EQ(::mkfifo(m_folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(m_disk.read(m_folder.path("pipe")), std::nullopt) << "a pipe does not block";
}

TEST_F(DiskTest, WritingReplacesTheFile)
{
    const auto longest = std::string(255, 'n');
    EXPECT_EQ(m_disk.writeAtomically(m_folder.path(longest), "old"), std::nullopt);
    EXPECT_EQ(m_disk.writeAtomically(m_folder.path(longest), "new"), std::nullopt);
    EXPECT_EQ(m_folder.read(longest), "new");
    EXPECT_THAT(m_folder.files(), ElementsAre(longest));

    struct stat found {
    };

    ASSERT_EQ(::stat(m_folder.path(longest).c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600U);
}

TEST_F(DiskTest, FailedWriteKeepsTheOldFileAlone)
{
    m_folder.write("folder/inside", "kept");
    EXPECT_EQ(codeOf(m_disk.writeAtomically(m_folder.path("folder"), "new")), EISDIR);
    EXPECT_EQ(codeOf(m_disk.writeAtomically(m_folder.path("missing/file"), "new")), ENOENT);
    EXPECT_EQ(codeOf(m_disk.writeAtomically(m_folder.path(std::string(256, 'n')), "new")), ENAMETOOLONG);

    // As on a full disk, half of the content fits.
    m_folder.write("file", "old");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const auto error = m_disk.writeAtomically(m_folder.path("file"), std::string(2000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(codeOf(error), EFBIG);
    EXPECT_EQ(m_folder.read("file"), "old");
    EXPECT_THAT(m_folder.files(), ElementsAre("file", "folder/inside"));
}

TEST_F(DiskTest, TemporaryFilesOfEndedProcessesAreRemoved)
{
    const pid_t ended = ::fork();
    if (ended == 0)
        ::_exit(0);
    ASSERT_EQ(::waitpid(ended, nullptr, 0), ended);
    const auto running = ".virlo-" + std::to_string(::getppid()) + "-0A1B2C3D-aaaaaa";
    m_folder.write(running, "");
    m_folder.write("a/image", "kept");
    m_folder.write(".virlo-" + std::to_string(ended) + "-0A1B2C3D-aaaaaa", "");
    m_folder.write("a/b/.virlo-" + std::to_string(ended) + "-0A1B2C3D-bbbbbb", "");
    m_folder.write("a/b/.virlo-" + std::to_string(::getpid()) + "-0A1B2C3D-cccccc", "as in a container");
    m_folder.write("a/b/.virlo-XXXXXX", "of an earlier version");
    DiskFileSystem::removeAbandonedTemporaryFiles(m_folder.path());
    EXPECT_THAT(m_folder.files(), testing::UnorderedElementsAre(running, "a/image"));
    DiskFileSystem::removeAbandonedTemporaryFiles(m_folder.path("missing"));
}

TEST(FileSystem, FileNamesCannotLeaveTheirFolder)
{
    for (const auto& name :
         {std::string(".hidden"), std::string("..."), std::string("a b"), std::string(255, 'n')})
        EXPECT_TRUE(FileSystem::isFileName(name)) << name;
    for (const auto& name : {std::string(), std::string(".."), std::string("a/b"), std::string("a\0b", 3),
                             std::string(256, 'n')})
        EXPECT_FALSE(FileSystem::isFileName(name)) << name;
}

TEST_F(DiskTest, FoldersAreTheHostsOwnAndFollowTheVariables)
{
    const auto host = Bundle::mainBundle().identifier();
    EXPECT_EQ(host, "foundation-tests") << "the program's name, where the host set nothing";
    EXPECT_EQ(Folders::library(), m_folder.path("data/foundation-tests/Library"));
    EXPECT_EQ(Folders::caches(), m_folder.path("cache/foundation-tests"));
    setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(Folders::library(), m_folder.path("home/.local/share/foundation-tests/Library"));
    setenv("HOME", "", 1);
    EXPECT_EQ(Folders::library(), "");
    for (const char* const wrong : {"", "../other", "a/b"})
        EXPECT_THROW(Bundle::setMainBundle(wrong, "name", "1"), Exception) << wrong;
    EXPECT_EQ(Bundle::mainBundle().identifier(), host);
}

} // namespace

} // namespace virlo::test
