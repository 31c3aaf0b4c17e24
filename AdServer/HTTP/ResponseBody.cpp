#include "ResponseBody.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace adserver
{

namespace
{
constexpr std::string_view fillerHead = "{\"filler\":\"";
constexpr std::string_view fillerTail = "\"}";
} // namespace

std::shared_ptr<FileBody> FileBody::open(const std::filesystem::path& file)
{
    // Without O_NONBLOCK a FIFO in the folder would hold the thread up until somebody wrote to it.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return nullptr;

    struct stat facts {
    };

    if (::fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode)) {
        ::close(descriptor);
        return nullptr;
    }
    const std::int64_t changed = facts.st_mtim.tv_sec * 1'000'000'000LL + facts.st_mtim.tv_nsec;
    return std::shared_ptr<FileBody>(
        new FileBody(descriptor, static_cast<std::uint64_t>(facts.st_size), changed));
}

FileBody::FileBody(int descriptor, std::uint64_t size, std::int64_t changed)
    : m_descriptor(descriptor)
    , m_fileSize(size)
    , m_changed(changed)
    , m_size(size)
{
}

FileBody::~FileBody()
{
    ::close(m_descriptor);
}

void FileBody::narrow(std::uint64_t first, std::uint64_t size)
{
    m_first = first;
    m_size = size;
}

std::string FileBody::entityTag() const
{
    return '"' + std::to_string(m_fileSize) + '-' + std::to_string(m_changed) + '"';
}

std::size_t FileBody::read(std::uint64_t offset, char* into, std::size_t capacity) const
{
    if (offset >= m_size)
        return 0;
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(capacity, m_size - offset));
    const auto got = ::pread(m_descriptor, into, wanted, static_cast<off_t>(m_first + offset));
    return got > 0 ? static_cast<std::size_t>(got) : 0;
}

FillerBody::FillerBody(std::uint64_t size) : m_size(std::max(size, minimum)) {}

std::size_t FillerBody::read(std::uint64_t offset, char* into, std::size_t capacity) const
{
    if (offset >= m_size)
        return 0;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(capacity, m_size - offset));
    std::memset(into, 'a', count);
    for (std::size_t i = 0; i < count && offset + i < fillerHead.size(); ++i)
        into[i] = fillerHead[static_cast<std::size_t>(offset) + i];
    const auto tailStart = m_size - fillerTail.size();
    for (std::size_t i = 0; i < fillerTail.size(); ++i) {
        const auto position = tailStart + i;
        if (position >= offset && position < offset + count)
            into[position - offset] = fillerTail[i];
    }
    return count;
}

} // namespace adserver
