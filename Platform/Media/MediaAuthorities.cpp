#include "MediaAuthorities.h"

#include <fstream>
#include <iterator>
#include <mutex>
#include <sys/mman.h>
#include <unistd.h>

namespace virlo
{

namespace
{

std::string contentOfFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string systemAuthorities()
{
    for (const char* path :
         {"/etc/ssl/certs/ca-certificates.crt", "/etc/pki/tls/certs/ca-bundle.crt", "/etc/ssl/cert.pem"}) {
        if (std::string content = contentOfFile(path); !content.empty())
            return content;
    }
    return {};
}

/// GIO takes one file only: both lie in one of memory, which stays since it is read again with each
/// connection's first handshake.
GstPointer<GTlsDatabase> databaseOf(const std::string& own)
{
    const std::string content = systemAuthorities() + '\n' + own;
    const int memory = ::memfd_create("virlo-authorities", MFD_CLOEXEC);
    if (memory < 0)
        return nullptr;
    GstPointer<GTlsDatabase> database;
    std::size_t written = 0;
    while (written < content.size()) {
        const ssize_t count = ::write(memory, content.data() + written, content.size() - written);
        if (count <= 0)
            break;
        written += static_cast<std::size_t>(count);
    }
    if (written == content.size()) {
        const std::string path = "/proc/self/fd/" + std::to_string(memory);
        database.reset(g_tls_file_database_new(path.c_str(), nullptr));
    }
    if (!database)
        ::close(memory);
    return database;
}

} // namespace

GstPointer<GTlsDatabase> mediaAuthorities(const std::string& file)
{
    struct Kept {
        std::mutex mutex;
        std::string content;
        GstPointer<GTlsDatabase> database;
    };

    static auto* const kept = new Kept;
    if (file.empty())
        return nullptr;
    std::string content = contentOfFile(file);
    const std::lock_guard lock(kept->mutex);
    if (!kept->database || kept->content != content) {
        kept->database = databaseOf(content);
        kept->content = std::move(content);
    }
    return kept->database ? retained(kept->database.get()) : nullptr;
}

} // namespace virlo
