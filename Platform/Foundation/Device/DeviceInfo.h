#pragma once

#include <string>

namespace virlo
{

/// Facts about the device. The first call reads small files, whose content is kept, and the first call of
/// `identifierForVendor` also writes a file: call these on a worker. Any thread.
namespace DeviceInfo
{
/// NAME of `/etc/os-release`, else the kernel's name.
[[nodiscard]] std::string systemName();
/// VERSION_ID of `/etc/os-release`, else the kernel's release.
[[nodiscard]] std::string systemVersion();
/// The device tree's model, else DMI's product name, else the machine's architecture.
[[nodiscard]] std::string model();
/// A random UUID of this host app on this device, stored in "VendorIdentifier" in the library folder; it is
/// not derived from any identifier of the machine. A damaged file is replaced; where it cannot be written the
/// UUID lasts for the process.
[[nodiscard]] std::string identifierForVendor();
/// First of the user's languages as a BCP 47 tag ("en-US"), from LANGUAGE, LC_ALL, LC_MESSAGES and LANG; "en"
/// where they name none.
[[nodiscard]] std::string preferredLanguage();
/// The zone's Olson name ("Europe/Berlin"), from TZ, else from the system's setting; read at each call.
[[nodiscard]] std::string timeZoneName();
} // namespace DeviceInfo

} // namespace virlo
