#include "Bundle.h"

#include "Exception.h"
#include "FileSystem.h"

#include <errno.h>
#include <mutex>
#include <sys/utsname.h>
#include <utility>

namespace virlo
{

namespace
{

std::mutex bundleMutex;

std::optional<Bundle>& currentBundle()
{
    static auto* const bundle = new std::optional<Bundle>; // never destroyed: workers may outlive `main`
    return *bundle;
}

} // namespace

Bundle::Bundle(std::map<std::string, std::string> infoDictionary) : m_info(std::move(infoDictionary)) {}

std::optional<std::string> Bundle::info(const std::string& key) const
{
    const auto found = m_info.find(key);
    return found == m_info.end() ? std::nullopt : std::optional(found->second);
}

std::string Bundle::identifier() const
{
    return info("CFBundleIdentifier").value_or("");
}

Bundle Bundle::withFacts(const std::string& identifier, const std::string& name, const std::string& version)
{
    utsname system{};
    uname(&system);
    return Bundle({{"CFBundleName", name},
                   {"CFBundleIdentifier", identifier},
                   {"CFBundleShortVersionString", version},
                   {"DTPlatformName", "linux"},
                   {"DTPlatformVersion", system.release}});
}

Bundle Bundle::mainBundle()
{
    const std::lock_guard lock(bundleMutex);
    if (!currentBundle()) {
        const std::string file = program_invocation_short_name;
        const std::string name = FileSystem::isFileName(file) ? file : "host";
        auto program = withFacts(name, name, "");
        program.m_info.erase("CFBundleShortVersionString");
        currentBundle() = std::move(program);
    }
    return *currentBundle();
}

void Bundle::setMainBundle(const std::string& identifier, const std::string& name, const std::string& version)
{
    if (!FileSystem::isFileName(identifier))
        raise("NSInvalidArgumentException", "The identifier of the main bundle must be a file name");
    const std::lock_guard lock(bundleMutex);
    currentBundle() = withFacts(identifier, name, version);
}

} // namespace virlo
