#include "Folders.h"

#include "Bundle.h"

#include <cstdlib>
#include <string_view>

namespace virlo
{

namespace
{

/// Relative paths in these variables are to be ignored.
std::string absolutePath(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : std::string();
}

std::string folder(const char* variable, std::string_view belowHome)
{
    std::string base = absolutePath(variable);
    if (base.empty()) {
        base = absolutePath("HOME");
        if (base.empty())
            return {};
        base += belowHome;
    }
    return base + '/' + Bundle::mainBundle().identifier();
}

} // namespace

std::string Folders::library()
{
    auto data = folder("XDG_DATA_HOME", "/.local/share");
    return data.empty() ? data : data + "/Library";
}

std::string Folders::caches()
{
    return folder("XDG_CACHE_HOME", "/.cache");
}

} // namespace virlo
