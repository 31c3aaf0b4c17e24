#include "AdvertisingIdentifier.h"

#include "SystemLog.h"
#include "UUID.h"

#include <mutex>
#include <utility>

namespace virlo
{

namespace
{

struct Holder {
    std::mutex mutex;
    std::optional<std::string> identifier;
};

Holder& holder()
{
    static auto* const instance = new Holder; // never destroyed: workers may outlive `main`
    return *instance;
}

void hold(std::optional<std::string> identifier)
{
    const std::lock_guard lock(holder().mutex);
    holder().identifier = std::move(identifier);
}

} // namespace

namespace AdvertisingIdentifier
{

std::optional<std::string> current()
{
    const std::lock_guard lock(holder().mutex);
    return holder().identifier;
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
        hold(std::move(uuid));
}

std::string renew()
{
    auto uuid = UUID::random();
    hold(uuid);
    return uuid;
}

void withhold()
{
    hold(std::nullopt);
}

} // namespace AdvertisingIdentifier

} // namespace virlo
