#include "Preferences.h"

#include "Error.h"
#include "FileSystem.h"
#include "Folders.h"
#include "SystemLog.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace virlo
{

namespace
{

constexpr std::size_t longestPreferences = std::size_t{1} << 20;

std::string escaped(std::string_view value)
{
    std::string result;
    for (const char character : value) {
        if (character == '\n')
            result += "\\n";
        else if (character == '\r')
            result += "\\r";
        else if (character == '\\')
            result += "\\\\";
        else
            result += character;
    }
    return result;
}

std::string unescaped(std::string_view value)
{
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool escapes = value[i] == '\\' && i + 1 < value.size();
        const char character = escapes ? value[++i] : value[i];
        result += escapes && character == 'n' ? '\n' : escapes && character == 'r' ? '\r' : character;
    }
    return result;
}

bool isControl(char character)
{
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
}

bool isKey(std::string_view key)
{
    return !key.empty() && key.find_first_of("=[;#") == std::string_view::npos &&
           std::none_of(key.begin(), key.end(), &isControl);
}

/// Nothing for a damaged text.
std::optional<std::map<std::string, std::string>> valuesInText(std::string_view text)
{
    std::map<std::string, std::string> values;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.empty() || std::string_view("[;#").find(line.front()) != std::string_view::npos)
            continue;
        const auto equals = line.find('=');
        const auto value = equals == line.npos ? std::string_view() : line.substr(equals + 1);
        if (!isKey(line.substr(0, equals)) || equals == line.npos || value.find('\0') != value.npos)
            return std::nullopt;
        values[std::string(line.substr(0, equals))] = unescaped(value);
    }
    return values;
}

} // namespace

Preferences::Preferences(std::string path) : m_path(std::move(path)), m_queue("com.virlohq.Preferences") {}

std::shared_ptr<Preferences> Preferences::withFile(std::string path)
{
    std::shared_ptr<Preferences> preferences(new Preferences(std::move(path)));
    preferences->m_queue.async([preferences] { preferences->load(); });
    return preferences;
}

Preferences& Preferences::standard()
{
    // Never destroyed: workers write until the process ends.
    static auto* const shared = new std::shared_ptr<Preferences>([] {
        const std::string library = Folders::library();
        return withFile(library.empty() ? library : library + "/Preferences/Preferences.ini");
    }());
    return **shared;
}

std::optional<std::string> Preferences::string(const std::string& key) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

void Preferences::setString(const std::string& key, const std::optional<std::string>& value)
{
    if (!isKey(key)) {
        systemLog("\"" + key + "\" cannot be the key of a preference.");
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (!m_isLoaded)
        m_setBeforeLoading.insert(key);
    if (value)
        m_values[key] = *value;
    else
        m_values.erase(key);
}

void Preferences::synchronize()
{
    m_queue.async([self = shared_from_this()] { self->write(); });
}

void Preferences::load()
{
    FileSystem& disk = FileSystem::shared();
    const auto text = m_path.empty() ? std::nullopt : disk.read(m_path, longestPreferences);
    auto values = valuesInText(text.value_or(""));
    if (!values) {
        systemLog("The preferences in " + m_path + " are damaged: they are set aside.");
        if (disk.writeAtomically(m_path + ".damaged", *text))
            systemLog("The damaged preferences could not be copied.");
        values.emplace();
    }
    const std::lock_guard lock(m_mutex);
    for (const auto& [key, value] : *values) {
        if (!m_setBeforeLoading.contains(key))
            m_values.emplace(key, value);
    }
    m_setBeforeLoading.clear();
    m_isLoaded = true;
}

void Preferences::write()
{
    if (m_path.empty())
        return;
    std::string text = "[Preferences]\n";
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [key, value] : m_values)
            text += key + '=' + escaped(value) + '\n';
    }
    FileSystem& disk = FileSystem::shared();
    auto error = disk.createDirectories(m_path.substr(0, m_path.rfind('/')));
    if (!error)
        error = disk.writeAtomically(m_path, text);
    if (error)
        systemLog("Cannot save the preferences to " + m_path + ": " + describe(*error));
}

} // namespace virlo
