#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace virlo::test
{

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (fs::temp_directory_path() / "virlo-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_path = pattern;
    for (const auto& [name, folder] :
         {std::pair{"XDG_DATA_HOME", "data"}, {"XDG_CACHE_HOME", "cache"}, {"HOME", "home"}}) {
        const char* before = std::getenv(name);
        m_variables.push_back({name, before ? std::optional<std::string>(before) : std::nullopt});
        setenv(name, path(folder).c_str(), 1);
    }
}

TemporaryFolder::~TemporaryFolder()
{
    for (const auto& variable : m_variables) {
        if (variable.before)
            setenv(variable.name, variable.before->c_str(), 1);
        else
            unsetenv(variable.name);
    }
    std::error_code ignored;
    fs::permissions(m_path, fs::perms::owner_all, ignored);
    for (auto entry = fs::recursive_directory_iterator(m_path, ignored);
         !ignored && entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        std::error_code unchanged;
        if (entry->is_directory(unchanged) && !entry->is_symlink(unchanged))
            fs::permissions(entry->path(), fs::perms::owner_all, unchanged);
    }
    fs::remove_all(m_path, ignored);
}

std::string TemporaryFolder::path(std::string_view relative) const
{
    return m_path + "/" + std::string(relative);
}

void TemporaryFolder::write(std::string_view relative, std::string_view content) const
{
    const fs::path file = path(relative);
    std::error_code failed;
    fs::create_directories(file.parent_path(), failed);
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    EXPECT_TRUE(!failed && stream.good()) << "cannot write " << file;
}

std::optional<std::string> TemporaryFolder::read(std::string_view relative) const
{
    std::ifstream stream(path(relative), std::ios::binary);
    if (!stream)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::vector<std::string> TemporaryFolder::files() const
{
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(m_path)) {
        if (!entry.is_directory())
            found.push_back(fs::relative(entry.path(), m_path).string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace virlo::test
