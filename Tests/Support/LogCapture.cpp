#include "LogCapture.h"

#include "GlobalQueue.h"
#include "SystemLog.h"

#include <algorithm>
#include <mutex>
#include <sstream>

namespace virlo::test
{

namespace
{

constexpr const char* reachabilityPrefix = "Reachability Flag Status:";

struct Expected {
    LogPattern pattern;
    bool required;
};

class LogWatch : public testing::EmptyTestEventListener
{
public:
    static LogWatch& shared()
    {
        static auto* const watch = new LogWatch; // threads may log until the process is gone
        return *watch;
    }

    void install()
    {
        setSystemLogSink([this](std::string_view message) {
            const std::lock_guard lock(m_mutex);
            m_lines.emplace_back(message);
        });
        testing::UnitTest::GetInstance()->listeners().Append(this);
    }

    void expect(LogPattern pattern, bool required)
    {
        const std::lock_guard lock(m_mutex);
        m_expected.push_back({std::move(pattern), required});
    }

    std::vector<std::string> lines() const
    {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

    void OnTestStart(const testing::TestInfo&) override
    {
        check("before this test, after the previous one's end");
    }

    void OnTestEnd(const testing::TestInfo&) override
    {
        GlobalQueue::drain(Seconds(5));
        check("in this test");
    }

    void OnTestIterationEnd(const testing::UnitTest&, int) override
    {
        GlobalQueue::drain(Seconds(5));
        check("after the last test's end");
    }

private:
    void check(const char* when)
    {
        std::vector<std::string> lines;
        std::vector<Expected> expected;
        {
            const std::lock_guard lock(m_mutex);
            lines.swap(m_lines);
            expected.swap(m_expected);
        }
        for (const auto& line : lines) {
            const bool known = line.starts_with(reachabilityPrefix) ||
                               std::any_of(expected.begin(), expected.end(), [&line](const Expected& entry) {
                                   return entry.pattern.matches(line);
                               });
            if (!known)
                ADD_FAILURE() << "Unexpected log line " << when << ": " << line;
        }
        for (const auto& [pattern, required] : expected) {
            const bool wasWritten =
                std::any_of(lines.begin(), lines.end(),
                            [&pattern = pattern](const auto& line) { return pattern.matches(line); });
            if (required && !wasWritten)
                ADD_FAILURE() << "No log line that " << pattern.description();
        }
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
    std::vector<Expected> m_expected;
};

} // namespace

LogPattern::LogPattern(const char* contained) : LogPattern(std::string(contained)) {}

LogPattern::LogPattern(const std::string& contained) : m_matcher(testing::HasSubstr(contained)) {}

LogPattern::LogPattern(testing::Matcher<std::string> m) : m_matcher(std::move(m)) {}

std::string LogPattern::description() const
{
    std::ostringstream stream;
    m_matcher.DescribeTo(&stream);
    return stream.str();
}

void installLogWatch()
{
    LogWatch::shared().install();
}

void expectLog(LogPattern pattern)
{
    LogWatch::shared().expect(std::move(pattern), true);
}

void allowLog(LogPattern pattern)
{
    LogWatch::shared().expect(std::move(pattern), false);
}

std::vector<std::string> logLines()
{
    return LogWatch::shared().lines();
}

std::vector<std::string> settledLogLines()
{
    GlobalQueue::drain(Seconds(5));
    return logLines();
}

int runAllTests(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    installLogWatch();
    return RUN_ALL_TESTS();
}

} // namespace virlo::test
