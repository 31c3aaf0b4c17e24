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

struct Registry {
    std::mutex mutex;
    std::optional<Bundle> main;
    std::map<std::string, Bundle> byIdentifier;
};

Registry& registry()
{
    static auto* const instance = new Registry; // never destroyed: workers may outlive `main`
    return *instance;
}

std::map<std::string, std::string> withPlatform(std::map<std::string, std::string> info)
{
    utsname system{};
    uname(&system);
    info.emplace("DTPlatformName", "linux");
    info.emplace("DTPlatformVersion", system.release);
    return info;
}

Bundle programBundle()
{
    const std::string file = program_invocation_short_name;
    const std::string name = FileSystem::isFileName(file) ? file : "host";
    return Bundle(withPlatform({{"CFBundleName", name}, {"CFBundleIdentifier", name}}));
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

Bundle Bundle::mainBundle()
{
    const std::lock_guard lock(registry().mutex);
    if (!registry().main)
        registry().main = programBundle();
    return *registry().main;
}

void Bundle::setMainBundle(const std::string& identifier, const std::string& name, const std::string& version)
{
    if (!FileSystem::isFileName(identifier))
        raise("NSInvalidArgumentException", "The identifier of the main bundle must be a file name");
    const std::lock_guard lock(registry().mutex);
    registry().main = Bundle(withPlatform({{"CFBundleName", name},
                                           {"CFBundleIdentifier", identifier},
                                           {"CFBundleShortVersionString", version}}));
}

std::optional<Bundle> Bundle::bundleWithIdentifier(const std::string& identifier)
{
    const std::lock_guard lock(registry().mutex);
    const auto found = registry().byIdentifier.find(identifier);
    return found == registry().byIdentifier.end() ? std::nullopt : std::optional(found->second);
}

void Bundle::registerBundle(Bundle bundle)
{
    bundle.m_info = withPlatform(std::move(bundle.m_info));
    const std::lock_guard lock(registry().mutex);
    const std::string identifier = bundle.identifier();
    registry().byIdentifier.insert_or_assign(identifier, std::move(bundle));
}

} // namespace virlo
