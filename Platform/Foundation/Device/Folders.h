#pragma once

#include <string>

namespace virlo
{

/// Where this host's files live; nothing here touches the disk. Each host has folders of its own, named by
/// its bundle identifier, so two hosts on one device never share a store. Empty where neither the variable
/// nor HOME is set.
namespace Folders
{
/// `$XDG_DATA_HOME/<app>/Library`, by default below `~/.local/share`.
[[nodiscard]] std::string library();
/// `$XDG_CACHE_HOME/<app>`, by default below `~/.cache`: the system may empty it when space is short.
[[nodiscard]] std::string caches();
} // namespace Folders

} // namespace virlo
