#include "JSONChecker.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace adserver
{

JSONChecker::JSONChecker(const nlohmann::json& value, std::string where)
    : m_value(&value)
    , m_where(std::move(where))
{
}

void JSONChecker::fail(const std::string& reason) const
{
    throw std::invalid_argument(m_where.empty() ? reason : m_where + ": " + reason);
}

void JSONChecker::eachMember(
    const std::function<void(const std::string& key, const JSONChecker& member)>& check) const
{
    if (!m_value->is_object())
        fail("must be an object");
    for (const auto& [key, member] : m_value->items())
        if (!member.is_null())
            check(key, JSONChecker(member, m_where.empty() ? key : m_where + '.' + key));
}

void JSONChecker::checkMembers(
    const std::map<std::string, std::function<void(const JSONChecker& member)>>& checks) const
{
    eachMember([&](const std::string& key, const JSONChecker& member) {
        const auto check = checks.find(key);
        if (check == checks.end())
            member.failAsUnknownKey();
        check->second(member);
    });
}

void JSONChecker::eachElement(const std::function<void(const JSONChecker& element)>& check) const
{
    if (!m_value->is_array())
        fail("must be an array");
    for (std::size_t i = 0; i < m_value->size(); ++i)
        check(JSONChecker((*m_value)[i], m_where + '[' + std::to_string(i) + ']'));
}

JSONChecker JSONChecker::required(const char* key) const
{
    if (!m_value->is_object())
        fail("must be an object");
    const auto found = m_value->find(key);
    const auto where = m_where.empty() ? std::string(key) : m_where + '.' + key;
    if (found == m_value->end())
        throw std::invalid_argument(where + ": is missing");
    return JSONChecker(*found, where);
}

std::string JSONChecker::text() const
{
    if (!m_value->is_string())
        fail("must be a text");
    return m_value->get<std::string>();
}

std::string JSONChecker::nonEmptyText() const
{
    auto found = text();
    if (found.empty())
        fail("must not be empty");
    return found;
}

std::string JSONChecker::oneOf(std::initializer_list<std::string_view> choices) const
{
    auto found = text();
    std::string list;
    for (const auto choice : choices) {
        if (found == choice)
            return found;
        list.append(list.empty() ? "" : ", ").append(1, '"').append(choice).append(1, '"');
    }
    fail("must be one of " + list);
}

double JSONChecker::number(double least, double most) const
{
    const auto found = m_value->is_number() ? m_value->get<double>() : least - 1;
    if (found < least || found > most) {
        std::ostringstream reason;
        reason << "must be a number from " << least << " to " << most;
        fail(reason.str());
    }
    return found;
}

void JSONChecker::numberOrText(double least, double most) const
{
    if (!m_value->is_string()) {
        [[maybe_unused]] const auto checked = number(least, most);
        return;
    }
    const auto text = m_value->get<std::string>();
    char* end = nullptr;
    nlohmann::json read = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0')
        read = nullptr;
    [[maybe_unused]] const auto checked = JSONChecker(read, m_where).number(least, most);
}

std::uint64_t JSONChecker::wholeNumber(std::uint64_t most) const
{
    if (!m_value->is_number_unsigned() || m_value->get<std::uint64_t>() > most)
        fail("must be a whole number from 0 to " + std::to_string(most));
    return m_value->get<std::uint64_t>();
}

bool JSONChecker::truth() const
{
    if (!m_value->is_boolean())
        fail("must be true or false");
    return m_value->get<bool>();
}

} // namespace adserver
