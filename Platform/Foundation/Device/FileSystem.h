#pragma once

#include "Error.h"

#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// The disk as the library uses it; tests replace it by one that is slow or fails. Every call blocks, so none
/// is made on the main thread. Any thread. Errors have the domain `errorDomain`, an errno value as code, and
/// "Reason" and "Path" in userInfo.
class FileSystem
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.file";

    virtual ~FileSystem() = default;

    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;
    [[nodiscard]] virtual bool isDirectory(const std::string& path) const = 0;
    /// With all missing parent directories, mode 0700. A directory that exists already is success.
    virtual OptionalError createDirectories(const std::string& path) = 0;
    /// The whole file, or nothing where it is missing, unreadable, no regular file, or longer than `limit`
    /// bytes.
    [[nodiscard]] virtual std::optional<std::string>
    read(const std::string& path, std::size_t limit = std::size_t{64} << 20) const = 0;
    /// Writes and flushes a temporary file in the same folder and renames it over `path`: readers, also after
    /// a power cut, find the old content or the new content. A failure leaves the old file and removes the
    /// temporary one. Mode 0600.
    virtual OptionalError writeAtomically(const std::string& path, std::string_view content) = 0;

    [[nodiscard]] static FileSystem& shared();
    /// Null restores the real disk. Not owned.
    static void setShared(FileSystem* fileSystem);

    /// Whether `name` can be one component of a path: not empty, not "." or "..", no slash or NUL, at most
    /// 255 bytes.
    [[nodiscard]] static bool isFileName(std::string_view name);
    [[nodiscard]] static Error errorWithCode(int code, const std::string& path);
};

} // namespace virlo
