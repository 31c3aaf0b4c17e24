#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace virlo::test
{

/// A pattern for log lines: a matcher, or a text that a line contains.
class LogPattern
{
public:
    LogPattern(const char* contained);           // NOLINT(google-explicit-constructor)
    LogPattern(const std::string& contained);    // NOLINT(google-explicit-constructor)
    LogPattern(testing::Matcher<std::string> m); // NOLINT(google-explicit-constructor)

    template <typename PolymorphicMatcher>
    LogPattern(PolymorphicMatcher matcher) // NOLINT(google-explicit-constructor)
        : LogPattern(testing::SafeMatcherCast<std::string>(matcher))
    {
    }

    [[nodiscard]] bool matches(const std::string& line) const { return m_matcher.Matches(line); }

    [[nodiscard]] std::string description() const;

private:
    testing::Matcher<std::string> m_matcher;
};

/// Watches the system's log for every test of the program: at each test's end, once the queues have drained,
/// it fails the test for each line that no `expectLog` or `allowLog` matches. Lines that start with
/// "Reachability Flag Status:" are ignored. `runAllTests` calls it; other mains call it once after
/// InitGoogleTest.
void installLogWatch();

/// Expects lines of the running test, before or after they are written; at least one by the test's end.
void expectLog(LogPattern pattern);
/// The same, for lines that need not be written.
void allowLog(LogPattern pattern);

/// The running test's lines so far, expected or not, in order. Any thread.
[[nodiscard]] std::vector<std::string> logLines();
/// The same, after all queues have drained.
[[nodiscard]] std::vector<std::string> settledLogLines();

/// The `main` of a test program: arguments, log watch, run. A Qt program makes its application object first.
[[nodiscard]] int runAllTests(int argc, char** argv);

} // namespace virlo::test
