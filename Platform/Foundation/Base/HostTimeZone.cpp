#include "HostTimeZone.h"

#include "FileSystem.h"

#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <unistd.h>

namespace virlo
{

namespace
{

/// Whether the system's time zone database has the zone.
bool isKnown(const std::string& name)
{
    const bool isName = !name.empty() && name.size() <= 100 && name[0] != '/' && name[0] != '.' &&
                        name.find("..") == std::string::npos && name.find('\0') == std::string::npos;
    if (!isName)
        return false;
    const auto path = "/usr/share/zoneinfo/" + name;
    return FileSystem::shared().exists(path) && !FileSystem::shared().isDirectory(path);
}

/// The name in "/usr/share/zoneinfo/Europe/Berlin"; any other text unchanged.
std::string withoutDirectory(std::string_view path)
{
    for (const std::string_view directory : {"/zoneinfo/", "posix/", "right/"}) {
        const auto found = path.find(directory);
        if (found != std::string_view::npos && (found == 0 || directory[0] == '/'))
            path.remove_prefix(found + directory.size());
    }
    return std::string(path);
}

std::string linkedZone()
{
    std::array<char, PATH_MAX> target{};
    const auto length = ::readlink("/etc/localtime", target.data(), target.size());
    return length > 0 ? withoutDirectory({target.data(), static_cast<std::size_t>(length)}) : std::string();
}

std::string namedZone()
{
    auto name = FileSystem::shared().read("/etc/timezone", 256).value_or("");
    name.erase(name.find_last_not_of(" \r\n") + 1);
    return name;
}

std::string zoneByOffset()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    tzset();
    localtime_r(&now, &local);
    const long minutes = local.tm_gmtoff / 60;
    if (minutes == 0)
        return "Etc/UTC";
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "GMT%c%02ld:%02ld", minutes < 0 ? '-' : '+',
                  std::labs(minutes) / 60, std::labs(minutes) % 60);
    return name.data();
}

} // namespace

std::string hostTimeZone()
{
    if (const char* const variable = std::getenv("TZ")) {
        const auto name = withoutDirectory(variable[0] == ':' ? variable + 1 : variable);
        return isKnown(name) ? name : zoneByOffset();
    }
    for (const auto& name : {linkedZone(), namedZone()}) {
        if (isKnown(name))
            return name;
    }
    return zoneByOffset();
}

} // namespace virlo
