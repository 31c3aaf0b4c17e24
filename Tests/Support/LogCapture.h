#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace virlo::test
{

/// A line of the running test, or the pattern of one: text stands for "contains this text".
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

/// Watches the system's log for every test of the program: takes its sink, and at each test's end (once the
/// queues have drained) fails the test for each line that no `expectLog` or `allowLog` of it announced. Lines
/// that start with "Reachability Flag Status:" are passed over. `runAllTests` calls it; other mains call it
/// once after InitGoogleTest.
void installLogWatch();

/// Announces lines of the running test, before or after they come. At least one must come by the test's end.
void expectLog(LogPattern pattern);
/// Announces lines that may or may not come.
void allowLog(LogPattern pattern);

/// The running test's lines so far, announced or not, in order. Any thread.
[[nodiscard]] std::vector<std::string> logLines();
/// The same, after all queues have drained.
[[nodiscard]] std::vector<std::string> settledLogLines();

/// The whole of a test program's `main`: arguments, log watch, run. A Qt program makes its application object
/// first.
[[nodiscard]] int runAllTests(int argc, char** argv);

} // namespace virlo::test
