#pragma once

#include "Export.h"

#include <map>
#include <optional>
#include <string>

namespace virlo
{

/// The facts that a program or library states about itself, under the keys "CFBundleName",
/// "CFBundleIdentifier", "CFBundleShortVersionString", "DTPlatformName" ("linux") and "DTPlatformVersion"
/// (the kernel's release). Values; any thread.
class VIRLO_EXPORT Bundle
{
public:
    Bundle() = default;
    explicit Bundle(std::map<std::string, std::string> infoDictionary);

    [[nodiscard]] const std::map<std::string, std::string>& infoDictionary() const noexcept { return m_info; }

    [[nodiscard]] std::optional<std::string> info(const std::string& key) const;
    [[nodiscard]] std::string identifier() const;

    /// The host app's: what it set, and where it set nothing the program's file name as name and identifier.
    [[nodiscard]] static Bundle mainBundle();
    /// Called by a host once, before it takes anything of the library. `identifier` names its folders on
    /// disk, so it must be one file name; anything else raises an Exception.
    static void setMainBundle(const std::string& identifier, const std::string& name,
                              const std::string& version);
    /// The bundle registered under the identifier, or nothing.
    [[nodiscard]] static std::optional<Bundle> bundleWithIdentifier(const std::string& identifier);
    /// Makes `bundle` findable by its identifier; the two platform keys are added where it lacks them.
    static void registerBundle(Bundle bundle);

private:
    std::map<std::string, std::string> m_info;
};

} // namespace virlo
