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

struct Announced {
    LogPattern pattern;
    bool demanded;
};

class LogWatch : public testing::EmptyTestEventListener
{
public:
    static LogWatch& shared()
    {
        static auto* const watch = new LogWatch; // threads may log to the process's very end
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

    void announce(LogPattern pattern, bool demanded)
    {
        const std::lock_guard lock(m_mutex);
        m_announced.push_back({std::move(pattern), demanded});
    }

    std::vector<std::string> lines() const
    {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

    void OnTestStart(const testing::TestInfo&) override
    {
        judge("before this test, after the previous one's end");
    }

    void OnTestEnd(const testing::TestInfo&) override
    {
        GlobalQueue::drain(Seconds(5));
        judge("in this test");
    }

    void OnTestIterationEnd(const testing::UnitTest&, int) override
    {
        GlobalQueue::drain(Seconds(5));
        judge("after the last test's end");
    }

private:
    void judge(const char* when)
    {
        std::vector<std::string> lines;
        std::vector<Announced> announced;
        {
            const std::lock_guard lock(m_mutex);
            lines.swap(m_lines);
            announced.swap(m_announced);
        }
        for (const auto& line : lines) {
            const bool known =
                line.starts_with(reachabilityPrefix) ||
                std::any_of(announced.begin(), announced.end(),
                            [&line](const Announced& entry) { return entry.pattern.matches(line); });
            if (!known)
                ADD_FAILURE() << "Unexpected log line " << when << ": " << line;
        }
        for (const auto& [pattern, demanded] : announced) {
            const bool came = std::any_of(lines.begin(), lines.end(), [&pattern = pattern](const auto& line) {
                return pattern.matches(line);
            });
            if (demanded && !came)
                ADD_FAILURE() << "No log line that " << pattern.description();
        }
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
    std::vector<Announced> m_announced;
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
    LogWatch::shared().announce(std::move(pattern), true);
}

void allowLog(LogPattern pattern)
{
    LogWatch::shared().announce(std::move(pattern), false);
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
