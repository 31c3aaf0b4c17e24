#pragma once

#include "Export.h"
#include "StringFormat.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The library's diagnostic output: four levels of one-line messages to the system log. A host sets the
/// level; the library writes. A message is formatted on the caller's thread, also when its level is not
/// written, and written later, in order, on the logger's queue, so logging never waits for output. No level
/// or tag is added to it. Any thread; never fails.
class VIRLO_EXPORT VIRLOAdFrameworkLogger
{
public:
    /// Label of the queue that writes the messages.
    static const char* const kLogQueue;

    VIRLOAdFrameworkLogger() = delete;

    /// 1 writes errors, 2 also warnings (the default), 3 also notices, 4 and above everything, 0 and below
    /// nothing. Applies to later messages.
    static void setDebugLevel(std::int64_t level);

    /// Directives such as "%@" are those of `virlo::format`; arguments are never read as patterns.
    template <typename... Arguments>
    static void logErrorWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        log(1, virlo::format(pattern, arguments...));
    }

    template <typename... Arguments>
    static void logWarningWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        log(2, virlo::format(pattern, arguments...));
    }

    template <typename... Arguments>
    static void logNoticeWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        log(3, virlo::format(pattern, arguments...));
    }

    template <typename... Arguments>
    static void logInfoWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        log(4, virlo::format(pattern, arguments...));
    }

private:
    static void log(std::int64_t smallestLevel, std::string message);
};
