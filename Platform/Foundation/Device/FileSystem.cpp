#include "FileSystem.h"

#include "DiskFileSystem.h"

#include <atomic>
#include <system_error>

namespace virlo
{

namespace
{

constinit std::atomic<FileSystem*> sharedFileSystem = nullptr;

} // namespace

FileSystem& FileSystem::shared()
{
    if (FileSystem* const fileSystem = sharedFileSystem.load(std::memory_order_acquire))
        return *fileSystem;
    static auto* const disk = new DiskFileSystem; // never destroyed: workers write until the process ends
    return *disk;
}

void FileSystem::setShared(FileSystem* fileSystem)
{
    sharedFileSystem.store(fileSystem, std::memory_order_release);
}

bool FileSystem::isFileName(std::string_view name)
{
    constexpr std::size_t longest = 255;
    return !name.empty() && name != "." && name != ".." && name.size() <= longest &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

Error FileSystem::errorWithCode(int code, const std::string& path)
{
    return {errorDomain, code, {{"Reason", std::generic_category().message(code)}, {"Path", path}}};
}

} // namespace virlo
