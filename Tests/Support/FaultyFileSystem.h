#pragma once

#include "FileSystem.h"

#include <array>
#include <condition_variable>
#include <mutex>

namespace virlo::test
{

/// The real disk with injected faults. Set from its making to its end, which waits for running calls. Any
/// thread.
class FaultyFileSystem : public FileSystem
{
public:
    enum class Operation { Exists, IsDirectory, CreateDirectories, Read, Write };

    FaultyFileSystem();
    ~FaultyFileSystem() override;
    FaultyFileSystem(const FaultyFileSystem&) = delete;
    FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;

    /// Calls of `operation` fail with `code` (an errno value) before they touch the disk. Exists and
    /// IsDirectory return false, Read returns nothing.
    void fail(Operation operation, int code);
    /// Directories and writes fail with EROFS.
    void setReadOnly();
    /// Calls of `operation` wait from here on until `release`.
    void hold(Operation operation);
    void release();
    /// No faults any more; held calls continue.
    void heal();

    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] bool isDirectory(const std::string& path) const override;
    OptionalError createDirectories(const std::string& path) override;
    [[nodiscard]] std::optional<std::string> read(const std::string& path, std::size_t limit) const override;
    OptionalError writeAtomically(const std::string& path, std::string_view content) override;

private:
    struct Faults {
        int code = 0;
        bool held = false;
    };
    class Call;

    FileSystem& m_real;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    mutable std::array<Faults, 5> m_faults;
    mutable int m_active = 0;
};

} // namespace virlo::test
