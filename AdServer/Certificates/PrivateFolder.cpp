#include "PrivateFolder.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace adserver
{

namespace
{

[[noreturn]] void fail(const std::string& what, const std::filesystem::path& where)
{
    throw std::runtime_error("cannot " + what + ' ' + where.string() + ": " +
                             std::generic_category().message(errno));
}

} // namespace

PrivateFolder::PrivateFolder(const std::filesystem::path& folder)
{
    std::error_code failure;
    const bool isNew = std::filesystem::create_directories(folder, failure);
    if (failure)
        throw std::runtime_error("cannot make the folder " + folder.string() + ": " + failure.message());
    if (isNew)
        ::chmod(folder.c_str(), S_IRWXU);
    m_lock = ::open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_lock < 0 || ::flock(m_lock, LOCK_EX) != 0) {
        const int reason = errno;
        if (m_lock >= 0)
            ::close(m_lock);
        errno = reason;
        fail("use the folder", folder);
    }
}

PrivateFolder::~PrivateFolder()
{
    ::close(m_lock);
}

std::string PrivateFolder::read(const std::filesystem::path& file)
{
    std::array<char, 65536> buffer{};
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return {};
    const auto size = ::read(descriptor, buffer.data(), buffer.size());
    ::close(descriptor);
    return size > 0 ? std::string(buffer.data(), static_cast<std::size_t>(size)) : std::string();
}

void PrivateFolder::write(const std::filesystem::path& file, const std::string& text, mode_t mode)
{
    const auto draft = file.string() + ".new";
    ::unlink(draft.c_str());
    const int descriptor = ::open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor < 0)
        fail("write", draft);
    const bool written = ::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                         ::fsync(descriptor) == 0;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    if (!written || ::rename(draft.c_str(), file.c_str()) != 0) {
        const int cause = errno;
        ::unlink(draft.c_str());
        errno = cause;
        fail("write", file);
    }
}

} // namespace adserver
