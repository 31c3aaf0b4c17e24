#pragma once

#include "FileSystem.h"

namespace virlo
{

/// The real disk.
class DiskFileSystem : public FileSystem
{
public:
    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] bool isDirectory(const std::string& path) const override;
    OptionalError createDirectories(const std::string& path) override;
    [[nodiscard]] std::optional<std::string> read(const std::string& path, std::size_t limit) const override;
    OptionalError writeAtomically(const std::string& path, std::string_view content) override;

    /// Deletes the temporary files that processes killed during `writeAtomically` have left in `folder` and
    /// its subfolders. Those of running processes stay.
    static void removeAbandonedTemporaryFiles(const std::string& folder);
};

} // namespace virlo
