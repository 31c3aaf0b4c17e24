#include "DeviceInfo.h"

#include "ASCII.h"
#include "FileSystem.h"
#include "Folders.h"
#include "HostTimeZone.h"
#include "UUID.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string_view>
#include <sys/utsname.h>

namespace virlo
{

namespace
{

constexpr std::size_t longestFact = 128;
constexpr std::size_t longestFile = std::size_t{64} << 10;

/// One line of printable characters: texts of a device tree end with NUL, those of firmware with blanks.
std::string cleaned(std::string text)
{
    std::erase_if(text, [](unsigned char byte) { return byte < ' ' || byte == 0x7F; });
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    text.resize(std::min(text.size(), longestFact));
    return text;
}

std::string firstOf(std::initializer_list<std::string> candidates)
{
    for (const auto& candidate : candidates) {
        if (!candidate.empty())
            return candidate;
    }
    return {};
}

std::string fileText(const char* path)
{
    return FileSystem::shared().read(path, longestFile).value_or("");
}

/// The value of a line `KEY=value` or `KEY="value"`, without the shell's escapes.
std::string releaseField(std::string_view release, std::string_view key)
{
    for (std::size_t start = 0; start < release.size();) {
        const auto end = std::min(release.find('\n', start), release.size());
        auto line = release.substr(start, end - start);
        start = end + 1;
        if (!line.starts_with(key) || line.substr(key.size()).substr(0, 1) != "=")
            continue;
        line.remove_prefix(key.size() + 1);
        std::string value;
        for (std::size_t index = 0; index < line.size(); ++index) {
            if (line[index] == '\\' && index + 1 < line.size())
                value += line[++index];
            else if (line[index] != '"' && line[index] != '\'')
                value += line[index];
        }
        return cleaned(value);
    }
    return {};
}

struct Facts {
    std::string name;
    std::string version;
    std::string model;
};

const Facts& facts()
{
    static const auto* const read = [] {
        utsname system{};
        uname(&system);
        const auto release = firstOf({fileText("/etc/os-release"), fileText("/usr/lib/os-release")});
        return new Facts{firstOf({releaseField(release, "NAME"), system.sysname}),
                         firstOf({releaseField(release, "VERSION_ID"), system.release}),
                         firstOf({cleaned(fileText("/proc/device-tree/model")),
                                  cleaned(fileText("/sys/class/dmi/id/product_name")), system.machine})};
    }();
    return *read;
}

std::string storedVendorIdentifier(const std::string& folder)
{
    auto& disk = FileSystem::shared();
    const auto path = folder + "/VendorIdentifier";
    if (!folder.empty()) {
        if (const auto stored = disk.read(path, longestFile); stored && UUID::isValid(*stored))
            return *stored;
    }
    auto made = UUID::random();
    if (!folder.empty() && !disk.createDirectories(folder))
        disk.writeAtomically(path, made);
    return made;
}

/// The BCP 47 tag of a locale name such as "de_AT.UTF-8@euro" or "sr_RS@latin"; empty for "C", "POSIX" and
/// other text.
std::string languageTag(std::string_view locale)
{
    const auto isAlphabetic = [](std::string_view part) {
        return std::all_of(part.begin(), part.end(),
                           [](unsigned char byte) { return std::isalpha(byte) != 0; });
    };
    const auto name = locale.substr(0, locale.find_first_of(".@"));
    const auto language = name.substr(0, name.find('_'));
    if (language.size() < 2 || language.size() > 3 || !isAlphabetic(language))
        return {};
    auto tag = ASCII::lowercase(language);
    if (locale.ends_with("@latin"))
        tag += "-Latn";
    else if (locale.ends_with("@cyrillic"))
        tag += "-Cyrl";
    const auto territory =
        name.size() > language.size() ? name.substr(language.size() + 1) : std::string_view();
    if (territory.size() == 2 && isAlphabetic(territory)) {
        tag += '-';
        std::transform(territory.begin(), territory.end(), std::back_inserter(tag),
                       [](unsigned char byte) { return std::toupper(byte); });
    }
    return tag;
}

std::string environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

} // namespace

std::string DeviceInfo::systemName()
{
    return facts().name;
}

std::string DeviceInfo::systemVersion()
{
    return facts().version;
}

std::string DeviceInfo::model()
{
    return facts().model;
}

std::string DeviceInfo::identifierForVendor()
{
    static auto* const mutex = new std::mutex;
    static auto* const known = new std::map<std::string, std::string>;
    const auto folder = Folders::library();
    const std::lock_guard lock(*mutex);
    const auto found = known->find(folder);
    return found != known->end() ? found->second
                                 : known->emplace(folder, storedVendorIdentifier(folder)).first->second;
}

std::string DeviceInfo::preferredLanguage()
{
    const auto locale = firstOf({environment("LC_ALL"), environment("LC_MESSAGES"), environment("LANG")});
    auto fromLocale = languageTag(locale);
    // As in gettext, the list is ignored where the locale is "C".
    if (!fromLocale.empty()) {
        const auto list = environment("LANGUAGE");
        if (auto first = languageTag(list.substr(0, list.find(':'))); !first.empty())
            return first;
    }
    return fromLocale.empty() ? "en" : fromLocale;
}

std::string DeviceInfo::timeZoneName()
{
    return hostTimeZone();
}

} // namespace virlo
