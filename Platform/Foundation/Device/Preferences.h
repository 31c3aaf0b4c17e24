#pragma once

#include "Export.h"
#include "SerialQueue.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace virlo
{

/// Texts by key that outlive the process. Any thread; no call waits for the disk.
///
/// The file is UTF-8 text of lines "key=value"; in values a backslash, a line feed and a carriage return are
/// written `\\`, `\n` and `\r`. Empty lines, "[section]" lines and those that begin with ';' or '#' are
/// skipped. It is read once, in the background; until then, and where it cannot be read, there are only the
/// values set by this process, which also win over the file's. A damaged file is copied to
/// "Preferences.ini.damaged", reads as empty and is replaced by the next `synchronize`.
class VIRLO_EXPORT Preferences : public std::enable_shared_from_this<Preferences>
{
public:
    /// The host app's: "Preferences/Preferences.ini" in its library folder. The first call begins to read it,
    /// so `Bundle::setMainBundle` comes before.
    [[nodiscard]] static Preferences& standard();
    /// An empty path: nothing is read or saved.
    [[nodiscard]] static std::shared_ptr<Preferences> withFile(std::string path);

    Preferences(const Preferences&) = delete;
    Preferences& operator=(const Preferences&) = delete;

    /// Nothing where the key is not set.
    [[nodiscard]] std::optional<std::string> string(const std::string& key) const;
    /// For this process at once; `synchronize` saves it. Nothing removes the key. A key that is empty or
    /// holds '=', '[', ';', '#' or a control character is refused with a line in the log.
    void setString(const std::string& key, const std::optional<std::string>& value);
    /// Writes the file in the background, as the values are then. A failure costs a line in the log.
    void synchronize();

private:
    using Values = std::map<std::string, std::string>;

    explicit Preferences(std::string path);
    void load();
    void write();

    const std::string m_path;
    SerialQueue m_queue;
    mutable std::mutex m_mutex; ///< guards the following
    Values m_values;
    std::set<std::string> m_setBeforeLoading;
    bool m_isLoaded = false;
};

} // namespace virlo
