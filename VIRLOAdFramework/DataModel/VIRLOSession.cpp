#include "VIRLOSession.h"

#include "Exception.h"
#include "JSONReading.h"
#include "StringFormat.h"
#include "VIRLOTimestamp.h"

#include <functional>
#include <utility>

using virlo::JSON;
namespace JSONReading = virlo::JSONReading;

namespace
{
constexpr const char* dateFormat = "yyyy-MM-dd'T'HH:mm:ss'.'SSS'Z'";
constexpr double defaultPingInterval = 60;

bool hasNumber(const JSON& dictionary, const char* key)
{
    const auto value = dictionary.find(key);
    return value != dictionary.end() && (value->is_number() || value->is_boolean() || value->is_string());
}
} // namespace

VIRLOSession::VIRLOSession(std::string identifier)
    : m_identifier(std::move(identifier))
    , m_dateFormatter(VIRLOTimestamp::VIRLO_cachedFormatterForDateFormat(dateFormat))
{
}

void VIRLOSession::init()
{
    virlo::raise(virlo::Exception::internalInconsistency,
                 "The only valid initialiser for VIRLOSession is initWithDictionary:");
}

std::shared_ptr<VIRLOSession> VIRLOSession::initWithDictionary(const JSON& dictionary)
{
    auto identifier = JSONReading::string(dictionary, "sessionId");
    if (!identifier)
        return nullptr;
    std::shared_ptr<VIRLOSession> session(new VIRLOSession(std::move(*identifier)));
    session->updateWithDictionary(dictionary);
    // Deliberate: only the first response has this default; a later one without the key means 0.
    if (!hasNumber(dictionary, "pingInterval"))
        session->m_pingInterval = defaultPingInterval;
    return session->m_state && session->m_date ? session : nullptr;
}

void VIRLOSession::updateWithDictionary(const JSON& dictionary)
{
    const auto timestamp = JSONReading::string(dictionary, "timestamp");
    const auto date = timestamp ? m_dateFormatter->dateFromString(*timestamp) : std::nullopt;
    auto state = JSONReading::string(dictionary, "status");

    const std::lock_guard lock(m_mutex);
    m_pingInterval = JSONReading::number(dictionary, "pingInterval");
    m_state = std::move(state);
    m_date = date;
}

double VIRLOSession::pingInterval() const
{
    const std::lock_guard lock(m_mutex);
    return m_pingInterval;
}

std::optional<std::string> VIRLOSession::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_state;
}

bool VIRLOSession::isActive() const
{
    return state() == "SESSION_ACTIVE";
}

std::optional<virlo::Date> VIRLOSession::date() const
{
    const std::lock_guard lock(m_mutex);
    return m_date;
}

bool VIRLOSession::isEqual(const VIRLOSession& other) const
{
    return m_identifier == other.m_identifier;
}

std::size_t VIRLOSession::hash() const
{
    return std::hash<std::string>{}(m_identifier);
}

std::string VIRLOSession::description() const
{
    return virlo::format("<VIRLOSession id=%@ state=%@ date=%@>", m_identifier, state(), date());
}
