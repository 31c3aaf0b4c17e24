// scenario-check EVERY SCENARIO LOG: compares the ad server's request log with what is due.
//
// EVERY is an array of entries due in each scenario, SCENARIO an object with more of them in "requests"; one
// of the same method, path and body takes the place of the former. An entry is {"what", "method", "path",
// "query"?, "session"?, "body"?, "status"?, "times"}: path, query and body are regular expressions for the
// whole text; "session" tells whether the session header is due; "times" is a count or [least, most]. Each
// request counts for the first entry that fits it; one that fits none is unexpected. An entry {"what",
// "order"} is about order instead: each request that fits one of its regular expressions for the path must
// not come before one that fits an earlier expression. Prints a line for each entry and exits 0 only if all
// were seen as often as due and nothing else was.

#include <nlohmann/json.hpp>

#include <algorithm>
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

    bool fits(const json& request) const
    {
        if (m_entry.at("method") != request.at("method"))
            return false;
        if (m_entry.contains("session") &&
            m_entry["session"].get<bool>() == text(request.value("session", json())).empty())
            return false;
        if (m_entry.contains("status") && m_entry["status"] != request.at("status"))
            return false;
        return matches("path", request) && matches("query", request) && matches("body", request);
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
    bool matches(const char* key, const json& request) const
    {
        if (!m_entry.contains(key))
            return true;
        return std::regex_match(text(request.value(key, json())), std::regex(text(m_entry[key])));
    }

    json m_entry;
    int m_least = 0;
    int m_most = INT_MAX;
    int m_seen = 0;
};

class Order
{
public:
    explicit Order(const json& entry) : m_what(text(entry.at("what")))
    {
        for (const json& stage : entry.at("order"))
            m_stages.emplace_back(text(stage));
    }

    void see(const json& request)
    {
        const std::string path = text(request.at("path"));
        for (std::size_t stage = 0; stage < m_stages.size(); ++stage) {
            if (!std::regex_match(path, m_stages[stage]))
                continue;
            m_seen = true;
            m_holds = m_holds && stage >= m_reached;
            m_reached = std::max(m_reached, stage);
        }
    }

    bool holds() const { return m_holds && m_seen; }

    void print() const { std::printf("%-9s %s\n", holds() ? "in order" : "disorder", m_what.c_str()); }

private:
    std::string m_what;
    std::vector<std::regex> m_stages;
    std::size_t m_reached = 0;
    bool m_holds = true;
    bool m_seen = false;
};

/// The entries of the scenario, then those of every scenario that it does not replace.
json entriesOf(const char* everyPath, const char* scenarioPath)
{
    json entries = json::parse(std::ifstream(scenarioPath)).at("requests");
    const auto key = [](const json& entry) {
        return text(entry.value("method", json())) + ' ' + text(entry.value("path", json())) + ' ' +
               text(entry.value("body", json()));
    };
    const auto isReplaced = [&](const json& entry) {
        return std::any_of(entries.begin(), entries.end(),
                           [&](const json& own) { return key(own) == key(entry); });
    };
    json all = entries;
    for (const json& entry : json::parse(std::ifstream(everyPath)))
        if (!isReplaced(entry))
            all.push_back(entry);
    return all;
}

bool check(const json& entries, const char* logPath)
{
    std::vector<Expected> due;
    std::vector<Order> orders;
    for (const json& entry : entries) {
        if (entry.contains("order"))
            orders.emplace_back(entry);
        else
            due.emplace_back(entry);
    }

    std::ifstream log(logPath);
    if (!log)
        throw std::runtime_error(std::string("cannot read ") + logPath);
    bool good = true;
    std::vector<std::string> unexpected;
    for (std::string line; std::getline(log, line);) {
        const json request = json::parse(line);
        for (Order& order : orders)
            order.see(request);
        const auto found =
            std::find_if(due.begin(), due.end(), [&](const Expected& entry) { return entry.fits(request); });
        if (found != due.end())
            found->count();
        else
            unexpected.push_back(line);
    }
    for (const Expected& entry : due) {
        entry.print();
        good = good && entry.holds();
    }
    for (const Order& order : orders) {
        order.print();
        good = good && order.holds();
    }
    for (const std::string& line : unexpected)
        std::printf("unexpected  %s\n", line.c_str());
    return good && unexpected.empty();
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 4) {
        std::fprintf(stderr, "usage: scenario-check EVERY SCENARIO LOG\n");
        return 2;
    }
    try {
        const bool good = check(entriesOf(arguments[1], arguments[2]), arguments[3]);
        std::puts(good ? "every request was seen as often as due"
                       : "the requests are not those that are due");
        return good ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "scenario-check: %s\n", error.what());
        return 2;
    }
}
