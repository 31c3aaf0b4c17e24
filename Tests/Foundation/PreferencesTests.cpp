#include "Preferences.h"

#include "FaultyFileSystem.h"
#include "LogCapture.h"
#include "Settle.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>

namespace virlo::test
{

namespace
{

constexpr const char* file = "Preferences/Preferences.ini";

class PreferencesTest : public testing::Test
{
protected:
    [[nodiscard]] std::shared_ptr<Preferences> opened() const
    {
        auto preferences = Preferences::withFile(folder.path(file));
        settleAll();
        return preferences;
    }

    const TemporaryFolder folder;
};

TEST_F(PreferencesTest, OutliveTheProcessInAFileForTheirUserAlone)
{
    const std::string odd = " a=b\\n\n\r\n[x] é ";
    const auto first = opened();
    first->setString("email", odd);
    first->setString("gone", "soon");
    first->setString("gone", std::nullopt);
    first->synchronize();
    settleAll();
    EXPECT_EQ(opened()->string("email"), odd);
    EXPECT_EQ(opened()->string("gone"), std::nullopt);
    struct stat status = {};
    ASSERT_EQ(stat(folder.path(file).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(PreferencesTest, AreReadAsAHostWroteThemByHand)
{
    folder.write(file, "; by hand\r\n[Preferences]\r\nphone=123\r\n\nemail=a@b.com");
    EXPECT_EQ(opened()->string("phone"), "123");
    EXPECT_EQ(opened()->string("email"), "a@b.com");
}

TEST_F(PreferencesTest, ADamagedFileIsSetAsideAndReplaced)
{
    expectLog("are damaged");
    const std::string damaged("email=a\nno equals sign\n\x01\x02", 26);
    folder.write(file, damaged);
    const auto preferences = opened();
    EXPECT_EQ(preferences->string("email"), std::nullopt);
    preferences->setString("email", "new");
    preferences->synchronize();
    settleAll();
    EXPECT_EQ(opened()->string("email"), "new");
    EXPECT_EQ(folder.read(std::string(file) + ".damaged"), damaged);
}

TEST_F(PreferencesTest, AHungDiskKeepsNobodyWaitingAndLosesNothing)
{
    folder.write(file, "email=old\nphone=123");
    FaultyFileSystem disk;
    disk.hold(FaultyFileSystem::Operation::Read);
    const auto preferences = Preferences::withFile(folder.path(file));
    EXPECT_EQ(preferences->string("email"), std::nullopt);
    preferences->setString("email", "new");
    preferences->synchronize();
    disk.release();
    settleAll();
    EXPECT_EQ(preferences->string("email"), "new");
    EXPECT_EQ(opened()->string("email"), "new");
    EXPECT_EQ(opened()->string("phone"), "123");
}

TEST_F(PreferencesTest, WhatCannotBeSavedIsLoggedAndKept)
{
    expectLog("Cannot save the preferences");
    expectLog("cannot be the key");
    FaultyFileSystem disk;
    disk.setReadOnly();
    const auto preferences = opened();
    preferences->setString("email", "kept");
    preferences->setString("a=b", "refused");
    preferences->synchronize();
    settleAll();
    EXPECT_EQ(preferences->string("email"), "kept");
}

} // namespace

} // namespace virlo::test
