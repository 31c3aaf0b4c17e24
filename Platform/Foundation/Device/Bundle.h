#pragma once

#include "Export.h"

#include <map>
#include <optional>
#include <string>

namespace virlo
{

/// Name, identifier and version of a program or library, under the keys "CFBundleName",
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

    /// The host app's; without `setMainBundle` the program's file name is its name and identifier.
    [[nodiscard]] static Bundle mainBundle();
    /// Called once by a host, before it uses anything else of the library. `identifier` names its folders on
    /// disk; an identifier that cannot be a file name raises an Exception.
    static void setMainBundle(const std::string& identifier, const std::string& name,
                              const std::string& version);
    /// A bundle with these facts and the two of the platform.
    [[nodiscard]] static Bundle withFacts(const std::string& identifier, const std::string& name,
                                          const std::string& version);

private:
    std::map<std::string, std::string> m_info;
};

} // namespace virlo
