#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace virlo::test
{

/// A fresh folder of the test's own, with XDG_DATA_HOME, XDG_CACHE_HOME and HOME pointing inside it until it
/// ends; then the variables are put back and the folder is removed with all it holds, whatever its
/// permissions.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return m_path; }

    [[nodiscard]] std::string path(std::string_view relative) const;

    /// Straight to the disk, making missing folders; a failure fails the test.
    void write(std::string_view relative, std::string_view content) const;
    [[nodiscard]] std::optional<std::string> read(std::string_view relative) const;
    /// The relative paths of all files (no folders) below, sorted.
    [[nodiscard]] std::vector<std::string> files() const;

private:
    struct Variable {
        const char* name;
        std::optional<std::string> before;
    };

    std::string m_path;
    std::vector<Variable> m_variables;
};

} // namespace virlo::test
