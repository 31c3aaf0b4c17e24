#pragma once

#include <string>

namespace virlo
{

/// Paths of this host's folders; nothing here accesses the disk. They end with the host's bundle identifier,
/// so two hosts on one device never share a store. Empty where neither the variable nor HOME is set.
namespace Folders
{
/// `$XDG_DATA_HOME/<app>/Library`, by default below `~/.local/share`.
[[nodiscard]] std::string library();
/// `$XDG_CACHE_HOME/<app>`, by default below `~/.cache`; the system may delete files in it.
[[nodiscard]] std::string caches();
} // namespace Folders

} // namespace virlo
