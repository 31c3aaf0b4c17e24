#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>

namespace adserver
{

/// A folder that only its user can enter, locked against other processes for as long as this object lives.
class PrivateFolder
{
public:
    /// Makes the folder if need be; throws std::runtime_error when it cannot be had.
    explicit PrivateFolder(const std::filesystem::path& folder);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    /// Empty when there is none, or none of sensible size.
    [[nodiscard]] static std::string read(const std::filesystem::path& file);
    /// Whole or not at all; throws std::runtime_error.
    static void write(const std::filesystem::path& file, const std::string& text, mode_t mode);

private:
    int m_lock = -1;
};

} // namespace adserver
