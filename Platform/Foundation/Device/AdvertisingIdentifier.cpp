#include "AdvertisingIdentifier.h"

#include "SystemLog.h"
#include "UUID.h"

#include <mutex>
#include <utility>

namespace virlo
{

namespace
{

std::mutex identifierMutex;

std::optional<std::string>& heldIdentifier()
{
    static auto* const value = new std::optional<std::string>; // never destroyed: workers may outlive `main`
    return *value;
}

void setIdentifier(std::optional<std::string> value)
{
    const std::lock_guard lock(identifierMutex);
    heldIdentifier() = std::move(value);
}

} // namespace

namespace AdvertisingIdentifier
{

std::optional<std::string> current()
{
    const std::lock_guard lock(identifierMutex);
    return heldIdentifier();
}

void set(std::string uuid)
{
    if (!UUID::isValid(uuid)) {
        withhold();
        systemLog("The advertising identifier is not a UUID; none is sent.");
        return;
    }
    // Platforms report a user who wants none by a UUID of zeros.
    if (uuid.find_first_not_of("0-") == std::string::npos)
        withhold();
    else
        setIdentifier(std::move(uuid));
}

std::string renew()
{
    auto uuid = UUID::random();
    setIdentifier(uuid);
    return uuid;
}

void withhold()
{
    setIdentifier(std::nullopt);
}

} // namespace AdvertisingIdentifier

} // namespace virlo
