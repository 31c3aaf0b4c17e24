#include "DiskFileSystem.h"

#include "LeadingNumber.h"
#include "UUID.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace virlo
{

namespace
{

constexpr mode_t privateDirectory = 0700;

class OpenFile
{
public:
    explicit OpenFile(int descriptor) : m_descriptor(descriptor) {}

    ~OpenFile() { close(); }

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    [[nodiscard]] int get() const { return m_descriptor; }

    /// False on failure; some file systems report a full disk only here.
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

/// EINVAL is a file system that has nothing to flush.
bool flush(int descriptor)
{
    return ::fdatasync(descriptor) == 0 || errno == EINVAL;
}

constexpr std::string_view temporaryMark = ".virlo-";

/// Names of this process's temporary files begin with it. The process identifier alone does not do: in a
/// container, the next process may have the same.
const std::string& temporaryPrefix()
{
    static const auto* const prefix = new std::string(
        std::string(temporaryMark) + std::to_string(::getpid()) + '-' + UUID::random().substr(0, 8) + '-');
    return *prefix;
}

/// Whether it is the name of a temporary file of a process that has ended.
bool isAbandoned(const std::string& name)
{
    if (!name.starts_with(temporaryMark) || name.starts_with(temporaryPrefix()))
        return false;
    const auto process =
        static_cast<pid_t>(LeadingNumber::integer(std::string_view(name).substr(temporaryMark.size())));
    return process <= 0 || process == ::getpid() || (::kill(process, 0) != 0 && errno == ESRCH);
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
    // O_NONBLOCK: opening a pipe at this path would otherwise block until somebody writes to it.
    const OpenFile file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));

    struct stat found {
    };

    if (file.get() < 0 || ::fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))
        return std::nullopt;
    // The size is only a hint: the kernel's own files have size 0, and a file may grow meanwhile.
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

OptionalError DiskFileSystem::writeAtomically(const std::string& path, std::string_view content)
{
    // Not named after the file, whose name may have the maximum length already.
    const auto slash = path.rfind('/');
    std::string temporary = (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) +
                            temporaryPrefix() + "XXXXXX";
    OpenFile file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (file.get() < 0)
        return errorWithCode(errno, path);
    const bool written = writeAll(file.get(), content) && flush(file.get()) && file.close() &&
                         ::rename(temporary.c_str(), path.c_str()) == 0;
    if (written)
        return std::nullopt;
    const int code = errno;
    ::unlink(temporary.c_str());
    return errorWithCode(code, path);
}

void DiskFileSystem::removeAbandonedTemporaryFiles(const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code error;
    fs::recursive_directory_iterator file(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && file != fs::recursive_directory_iterator(); file.increment(error)) {
        if (isAbandoned(file->path().filename().string()))
            ::unlink(file->path().c_str());
    }
}

} // namespace virlo
