#pragma once

#include "Export.h"

#include <optional>
#include <string>

namespace virlo
{

/// Facts about the device. The first question reads small files once and keeps the answers; the vendor
/// identifier also writes one file of its own the first time. So ask from a worker. Any thread.
namespace DeviceInfo
{
/// NAME of `/etc/os-release`, else the kernel's name.
[[nodiscard]] std::string systemName();
/// VERSION_ID of `/etc/os-release`, else the kernel's release.
[[nodiscard]] std::string systemVersion();
/// The device tree's model, else DMI's product name, else the machine's architecture.
[[nodiscard]] std::string model();
/// A UUID bound to this host app on this device: random, kept in "VendorIdentifier" in the library folder, so
/// nothing of the machine's own identifiers is in it. A damaged file is replaced by a new one; where the disk
/// refuses it is kept for the process only.
[[nodiscard]] std::string identifierForVendor();
/// First of the user's languages as a BCP 47 tag ("en-US"), from LANGUAGE, LC_ALL, LC_MESSAGES and LANG; "en"
/// where they name none.
[[nodiscard]] std::string preferredLanguage();
/// The zone's Olson name ("Europe/Berlin"), from TZ, else from the system's setting; read anew each time.
[[nodiscard]] std::string timeZoneName();
} // namespace DeviceInfo

/// The advertising identifier. The host holds it, or the user's choice about it: by default there is none,
/// and then none is sent. Any thread.
namespace AdvertisingIdentifier
{
/// A UUID, or nothing where the host withholds it.
[[nodiscard]] VIRLO_EXPORT std::optional<std::string> current();
/// The platform's own identifier, where it has one. All zeros withhold it, and so does text that is no UUID,
/// which is logged.
VIRLO_EXPORT void set(std::string uuid);
/// A new random one, kept for this process; the host stores it if it wants it back.
VIRLO_EXPORT std::string renew();
/// From here on none is sent.
VIRLO_EXPORT void withhold();
} // namespace AdvertisingIdentifier

} // namespace virlo
