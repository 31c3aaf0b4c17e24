#include "VIRLOUserProfile.h"

#include "JSONReading.h"
#include "VIRLOHostText.h"

namespace
{
constexpr const char* ageKey = "age";
constexpr const char* genderKey = "gender";
constexpr const char* keywordsKey = "keywords";
} // namespace

VIRLOUserProfile::VIRLOUserProfile() : m_profileDict(virlo::JSON::object()) {}

std::shared_ptr<VIRLOUserProfile> VIRLOUserProfile::initPrivate()
{
    return std::shared_ptr<VIRLOUserProfile>(new VIRLOUserProfile);
}

std::shared_ptr<VIRLOUserProfile> VIRLOUserProfile::sharedProfile()
{
    static const auto& shared = *new std::shared_ptr<VIRLOUserProfile>(initPrivate());
    return shared;
}

void VIRLOUserProfile::reset()
{
    const std::lock_guard lock(m_mutex);
    m_profileDict = virlo::JSON::object();
}

virlo::JSON VIRLOUserProfile::profileDictionary() const
{
    return profileDict();
}

virlo::JSON VIRLOUserProfile::profileDict() const
{
    const std::lock_guard lock(m_mutex);
    return m_profileDict;
}

std::uint64_t VIRLOUserProfile::age() const
{
    const std::lock_guard lock(m_mutex);
    return virlo::JSONReading::unsignedInteger(m_profileDict, ageKey);
}

void VIRLOUserProfile::setAge(std::uint64_t years)
{
    const std::lock_guard lock(m_mutex);
    m_profileDict[ageKey] = years;
}

std::optional<std::string> VIRLOUserProfile::gender() const
{
    const std::lock_guard lock(m_mutex);
    return virlo::JSONReading::string(m_profileDict, genderKey);
}

void VIRLOUserProfile::setGender(const std::string& gender)
{
    const std::lock_guard lock(m_mutex);
    m_profileDict[genderKey] = VIRLOHostText::wellFormed(gender);
}

std::vector<std::string> VIRLOUserProfile::keywords()
{
    const std::lock_guard lock(m_mutex);
    return keywordArrayLocked().get<std::vector<std::string>>();
}

void VIRLOUserProfile::addKeyword(const std::string& keyword)
{
    const std::lock_guard lock(m_mutex);
    keywordArrayLocked().push_back(VIRLOHostText::wellFormed(keyword));
}

void VIRLOUserProfile::removeKeyword(const std::string& keyword)
{
    const std::lock_guard lock(m_mutex);
    auto& keywords = keywordArrayLocked().get_ref<virlo::JSON::array_t&>();
    std::erase(keywords, virlo::JSON(VIRLOHostText::wellFormed(keyword)));
}

virlo::JSON& VIRLOUserProfile::keywordArrayLocked()
{
    virlo::JSON& keywords = m_profileDict[keywordsKey];
    if (!keywords.is_array())
        keywords = virlo::JSON::array();
    return keywords;
}
