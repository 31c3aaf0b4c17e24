// visit-check EXPECTED EXCHANGES: holds the ad server's log of a visit against what is due.
//
// EXPECTED is an array of {"what", "method", "path", "query"?, "session"?, "body"?, "status"?, "times"}:
// path, query and body are regular expressions for the whole text; "session" tells whether the session header
// is due; "times" is a count or [least, most]. Each exchange counts for the first entry that fits it; one
// that fits none is unexpected. Prints a line for each entry and exits 0 only if all were seen as often as
// due and nothing else was.

#include <nlohmann/json.hpp>

#include <climits>
#include <cstdio>
#include <exception>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace
{

using nlohmann::json;

std::string text(const json& value)
{
    if (value.is_null())
        return {};
    return value.is_string() ? value.get<std::string>() : value.dump();
}

class Expected
{
public:
    explicit Expected(const json& entry) : m_entry(entry)
    {
        const json& times = entry.at("times");
        m_least = times.is_array() ? times.at(0).get<int>() : times.get<int>();
        m_most = times.is_array() ? times.at(1).get<int>() : times.get<int>();
    }

    bool fits(const json& exchange) const
    {
        if (m_entry.at("method") != exchange.at("method"))
            return false;
        if (m_entry.contains("session") &&
            m_entry["session"].get<bool>() == text(exchange.value("session", json())).empty())
            return false;
        if (m_entry.contains("status") && m_entry["status"] != exchange.at("status"))
            return false;
        return matches("path", exchange) && matches("query", exchange) && matches("body", exchange);
    }

    void count() { ++m_seen; }

    bool holds() const { return m_seen >= m_least && m_seen <= m_most; }

    void print() const
    {
        const char* verdict = holds() ? "seen" : (m_seen < m_least ? "missing" : "too often");
        std::string due = std::to_string(m_least);
        if (m_most != m_least)
            due += " to " + std::to_string(m_most);
        std::printf("%-9s %d of %s  %s\n", verdict, m_seen, due.c_str(), text(m_entry.at("what")).c_str());
    }

private:
    bool matches(const char* key, const json& exchange) const
    {
        if (!m_entry.contains(key))
            return true;
        return std::regex_match(text(exchange.value(key, json())), std::regex(text(m_entry[key])));
    }

    json m_entry;
    int m_least = 0;
    int m_most = INT_MAX;
    int m_seen = 0;
};

bool check(const char* expectedPath, const char* exchangesPath)
{
    std::vector<Expected> due;
    for (const json& entry : json::parse(std::ifstream(expectedPath)))
        due.emplace_back(entry);

    std::ifstream log(exchangesPath);
    if (!log)
        throw std::runtime_error(std::string("cannot read ") + exchangesPath);
    bool good = true;
    std::vector<std::string> unexpected;
    for (std::string line; std::getline(log, line);) {
        const json exchange = json::parse(line);
        const auto found =
            std::find_if(due.begin(), due.end(), [&](const Expected& entry) { return entry.fits(exchange); });
        if (found != due.end())
            found->count();
        else
            unexpected.push_back(line);
    }
    for (const Expected& entry : due) {
        entry.print();
        good = good && entry.holds();
    }
    for (const std::string& line : unexpected)
        std::printf("unexpected  %s\n", line.c_str());
    return good && unexpected.empty();
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 3) {
        std::fprintf(stderr, "usage: visit-check EXPECTED EXCHANGES\n");
        return 2;
    }
    try {
        const bool good = check(arguments[1], arguments[2]);
        std::puts(good ? "every exchange was seen as often as due" : "the visit is not as it should be");
        return good ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "visit-check: %s\n", error.what());
        return 2;
    }
}
