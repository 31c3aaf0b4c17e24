#include "DiskFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace virlo
{

namespace
{

constexpr mode_t privateDirectory = 0700;

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}

    ~Descriptor() { close(); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const { return m_descriptor; }

    /// A full disk may show only here.
    bool close() { return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor;
};

bool writeAll(int descriptor, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Some file systems cannot flush and say so by EINVAL.
bool flush(int descriptor)
{
    return ::fdatasync(descriptor) == 0 || errno == EINVAL;
}

OptionalError createDirectory(const std::string& path)
{
    if (::mkdir(path.c_str(), privateDirectory) == 0)
        return std::nullopt;
    const int code = errno;

    struct stat found {
    };

    if (::stat(path.c_str(), &found) == 0)
        return S_ISDIR(found.st_mode) ? OptionalError() : FileSystem::errorWithCode(ENOTDIR, path);
    return FileSystem::errorWithCode(code, path);
}

} // namespace

bool DiskFileSystem::exists(const std::string& path) const
{
    return ::access(path.c_str(), F_OK) == 0;
}

bool DiskFileSystem::isDirectory(const std::string& path) const
{
    struct stat found {
    };

    return ::stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

OptionalError DiskFileSystem::createDirectories(const std::string& path)
{
    if (path.empty())
        return errorWithCode(ENOENT, path);
    if (isDirectory(path))
        return std::nullopt;
    for (auto end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        if (auto error = createDirectory(path.substr(0, end)))
            return error;
    }
    return createDirectory(path);
}

std::optional<std::string> DiskFileSystem::read(const std::string& path, std::size_t limit) const
{
    // Not blocking: a pipe in the file's place would otherwise hold the caller until somebody writes to it.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));

    struct stat found {
    };

    if (file.get() < 0 || ::fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))
        return std::nullopt;
    // The size is a hint alone: the kernel's own files say 0, and a file may grow meanwhile.
    if (std::cmp_greater(found.st_size, limit))
        return std::nullopt;
    constexpr std::size_t step = 4096;
    std::string content;
    std::size_t length = 0;
    for (;;) {
        const auto hint = static_cast<std::size_t>(found.st_size) + 1;
        content.resize(length < hint ? hint : length + step);
        const ssize_t taken = ::read(file.get(), content.data() + length, content.size() - length);
        if (taken < 0 && errno == EINTR)
            continue;
        if (taken < 0)
            return std::nullopt;
        length += static_cast<std::size_t>(taken);
        if (length > limit)
            return std::nullopt;
        if (taken == 0) {
            content.resize(length);
            return content;
        }
    }
}

OptionalError DiskFileSystem::writeAtomically(const std::string& path, std::string_view content,
                                              Durability durability)
{
    // Its name is short and not made from the file's, which may already be as long as a name may be.
    const auto slash = path.rfind('/');
    std::string temporary =
        (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + ".virlo-XXXXXX";
    Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (file.get() < 0)
        return errorWithCode(errno, path);
    const bool written = writeAll(file.get(), content) &&
                         (durability != Durability::PowerLoss || flush(file.get())) && file.close() &&
                         ::rename(temporary.c_str(), path.c_str()) == 0;
    if (written)
        return std::nullopt;
    const int code = errno;
    ::unlink(temporary.c_str());
    return errorWithCode(code, path);
}

} // namespace virlo
