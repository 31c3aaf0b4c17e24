#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace adserver
{

/// A value of a file with its path, so that an error can name it. Lives as long as
/// the value.
class JSONChecker
{
public:
    explicit JSONChecker(const nlohmann::json& value, std::string where = {});

    [[nodiscard]] const nlohmann::json& value() const { return *m_value; }

    [[nodiscard]] const std::string& where() const { return m_where; }

    /// Throws std::invalid_argument "where: reason".
    [[noreturn]] void fail(const std::string& reason) const;

    /// Hands each member to `check`; one that is null is passed over. Fails when the value is no object.
    void
    eachMember(const std::function<void(const std::string& key, const JSONChecker& member)>& check) const;
    /// The same, each member by the check of its key; a key without one fails.
    void
    checkMembers(const std::map<std::string, std::function<void(const JSONChecker& member)>>& checks) const;
    /// Fails when the value is no array.
    void eachElement(const std::function<void(const JSONChecker& element)>& check) const;
    /// Fails when the object lacks the key.
    [[nodiscard]] JSONChecker required(const char* key) const;

    [[nodiscard]] std::string text() const;
    [[nodiscard]] std::string nonEmptyText() const;
    [[nodiscard]] std::string oneOf(std::initializer_list<std::string_view> choices) const;
    [[nodiscard]] double number(double least, double most) const;
    /// Also takes a text that reads as such a number, as clients do.
    void numberOrText(double least, double most) const;
    [[nodiscard]] std::uint64_t wholeNumber(std::uint64_t most) const;
    [[nodiscard]] bool truth() const;

    [[noreturn]] void failAsUnknownKey() const { fail("is no key known here"); }

private:
    const nlohmann::json* m_value;
    std::string m_where;
};

} // namespace adserver
