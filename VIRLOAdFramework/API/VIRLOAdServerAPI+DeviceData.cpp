#include "AdvertisingIdentifier.h"
#include "Bundle.h"
#include "DeviceInfo.h"
#include "StringFormat.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOConstans.h"
#include "VIRLOFrameworkBundle.h"
#include "VIRLOHostText.h"

using virlo::Bundle;
using virlo::JSON;

namespace
{
constexpr const char* nameKey = "CFBundleName";
constexpr const char* versionKey = "CFBundleShortVersionString";
constexpr const char* platformNameKey = "DTPlatformName";
constexpr const char* platformVersionKey = "DTPlatformVersion";

std::string userAgent(const std::optional<std::string>& name, const std::optional<std::string>& version,
                      const Bundle& platform)
{
    return virlo::format("%@ %@ / %@ %@", name, version, platform.info(platformNameKey),
                         platform.info(platformVersionKey));
}
} // namespace

std::string VIRLOAdServerAPI::generateUserAgent()
{
    return generateUserAgentFromBundle(VIRLOFrameworkBundle::bundle());
}

std::string VIRLOAdServerAPI::generateUserAgentFromBundle(const Bundle& bundle)
{
    return userAgent(bundle.info(nameKey), bundle.info(versionKey), bundle);
}

std::string VIRLOAdServerAPI::generateUserAgentForStaticLibrary()
{
    return userAgent(VIRLOAdFrameworkName, VIRLOAdFrameworkVersion, Bundle::mainBundle());
}

JSON VIRLOAdServerAPI::deviceDataDictionary()
{
    JSON data = JSON::object();
    const auto put = [&data](const char* key, const std::optional<std::string>& value) {
        if (value && !value->empty())
            data[key] = VIRLOHostText::wellFormed(*value);
    };
    const Bundle framework = VIRLOFrameworkBundle::bundle();
    const Bundle main = Bundle::mainBundle();
    const Bundle& app = main.infoDictionary().empty() ? framework : main;

    put("systemName", virlo::DeviceInfo::systemName());
    put("systemVersion", virlo::DeviceInfo::systemVersion());
    put("deviceModel", virlo::DeviceInfo::model());
    put("identifierForVendor", virlo::DeviceInfo::identifierForVendor());
    put("identifierForAds", virlo::AdvertisingIdentifier::current());
    put("language", virlo::DeviceInfo::preferredLanguage());
    put("timezone", virlo::DeviceInfo::timeZoneName());
    put("appName", app.info(nameKey));
    put("appVersion", app.info(versionKey));
    put("sdkVersion", framework.info(versionKey));
    return data;
}
