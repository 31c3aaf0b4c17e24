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
    OptionalError writeAtomically(const std::string& path, std::string_view content,
                                  Durability durability) override;
};

} // namespace virlo
