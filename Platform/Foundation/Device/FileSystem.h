#pragma once

#include "Error.h"

#include <optional>
#include <string>
#include <string_view>

namespace virlo
{

/// The disk as the library uses it; the one place through which tests slow it down or break it. All calls
/// block: never from the main thread except where an operation's text says synchronous. Any thread. Errors
/// carry domain `errorDomain`, an errno value as code and in userInfo "Reason" and "Path".
class FileSystem
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.file";

    virtual ~FileSystem() = default;

    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;
    [[nodiscard]] virtual bool isDirectory(const std::string& path) const = 0;
    /// With all missing directories in between, mode 0700 (what a host's user watches is private). Present
    /// already is success.
    virtual OptionalError createDirectories(const std::string& path) = 0;
    /// The whole file, or nothing where it is missing, unreadable, no regular file, or longer than `limit`
    /// bytes.
    [[nodiscard]] virtual std::optional<std::string>
    read(const std::string& path, std::size_t limit = std::size_t{64} << 20) const = 0;
    /// What a completed write lives through, beside the end of the process.
    enum class Durability {
        PowerLoss,   ///< flushed to the medium before it takes the old file's place: for what cannot be had
                     ///< again
        Rebuildable, ///< faster; a power cut soon after may leave a damaged file: for caches
    };
    /// To a temporary file beside it, then renamed over it: a reader sees the old content or the new, never a
    /// part, and a failure leaves the old file and no litter. Mode 0600.
    virtual OptionalError writeAtomically(const std::string& path, std::string_view content,
                                          Durability durability = Durability::PowerLoss) = 0;

    [[nodiscard]] static FileSystem& shared();
    /// Null puts the real disk back. Not owned.
    static void setShared(FileSystem* fileSystem);

    /// Whether `name` can stand as one component of a path: not empty, not "." or "..", no slash or NUL, at
    /// most 255 bytes.
    [[nodiscard]] static bool isFileName(std::string_view name);
    [[nodiscard]] static Error errorWithCode(int code, const std::string& path);
};

} // namespace virlo
