#include "FaultyFileSystem.h"

#include <cerrno>

namespace virlo::test
{

namespace
{

std::size_t index(FaultyFileSystem::Operation operation)
{
    return static_cast<std::size_t>(operation);
}

} // namespace

/// One running call: waits while calls are held, and then knows whether to fail.
class FaultyFileSystem::Call
{
public:
    Call(const FaultyFileSystem& owner, Operation operation) : m_owner(owner)
    {
        std::unique_lock lock(owner.m_mutex);
        auto& faults = owner.m_faults[index(operation)];
        ++owner.m_active;
        owner.m_changed.wait(lock, [&faults] { return !faults.held; });
        m_code = faults.code;
    }

    ~Call()
    {
        const std::lock_guard lock(m_owner.m_mutex);
        --m_owner.m_active;
        m_owner.m_changed.notify_all();
    }

    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    [[nodiscard]] int code() const { return m_code; }

private:
    const FaultyFileSystem& m_owner;
    int m_code = 0;
};

FaultyFileSystem::FaultyFileSystem() : m_real(FileSystem::shared())
{
    setShared(this);
}

FaultyFileSystem::~FaultyFileSystem()
{
    setShared(nullptr);
    release();
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_active == 0; });
}

void FaultyFileSystem::fail(Operation operation, int code)
{
    const std::lock_guard lock(m_mutex);
    m_faults[index(operation)].code = code;
}

void FaultyFileSystem::setReadOnly()
{
    fail(Operation::CreateDirectories, EROFS);
    fail(Operation::Write, EROFS);
}

void FaultyFileSystem::hold(Operation operation)
{
    const std::lock_guard lock(m_mutex);
    m_faults[index(operation)].held = true;
}

void FaultyFileSystem::release()
{
    const std::lock_guard lock(m_mutex);
    for (auto& faults : m_faults)
        faults.held = false;
    m_changed.notify_all();
}

void FaultyFileSystem::heal()
{
    const std::lock_guard lock(m_mutex);
    for (auto& faults : m_faults)
        faults = {};
    m_changed.notify_all();
}

bool FaultyFileSystem::exists(const std::string& path) const
{
    const Call call(*this, Operation::Exists);
    return call.code() == 0 && m_real.exists(path);
}

bool FaultyFileSystem::isDirectory(const std::string& path) const
{
    const Call call(*this, Operation::IsDirectory);
    return call.code() == 0 && m_real.isDirectory(path);
}

OptionalError FaultyFileSystem::createDirectories(const std::string& path)
{
    const Call call(*this, Operation::CreateDirectories);
    return call.code() == 0 ? m_real.createDirectories(path) : errorWithCode(call.code(), path);
}

std::optional<std::string> FaultyFileSystem::read(const std::string& path, std::size_t limit) const
{
    const Call call(*this, Operation::Read);
    return call.code() == 0 ? m_real.read(path, limit) : std::nullopt;
}

OptionalError FaultyFileSystem::writeAtomically(const std::string& path, std::string_view content)
{
    const Call call(*this, Operation::Write);
    return call.code() == 0 ? m_real.writeAtomically(path, content) : errorWithCode(call.code(), path);
}

} // namespace virlo::test
