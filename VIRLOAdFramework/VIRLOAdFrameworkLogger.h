#pragma once

#include "Export.h"
#include "StringFormat.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The library's diagnostic output: four levels of one-line messages to the system log. A host sets the
/// level; writing is the library's own. A message is formatted at once on the caller's thread and written
/// later, in order, on a queue of the logger's own, so logging never waits for output. No level word or tag
/// is added. Any thread; never fails.
class VIRLO_EXPORT VIRLOAdFrameworkLogger
{
public:
    /// Label of the queue that writes.
    static const char* const kLogQueue;

    VIRLOAdFrameworkLogger() = delete;

    /// 1 writes errors, 2 warnings too, 3 notices too, 4 everything; 0 and below nothing. Until set it is 2.
    /// Holds from the next message on.
    static void setDebugLevel(std::int64_t level);

    /// "%@" and its kin are filled as `virlo::format` says; arguments are never read as patterns.
    template <typename... Arguments>
    static void logErrorWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        if (isWritten(1))
            log(virlo::format(pattern, arguments...));
    }

    template <typename... Arguments>
    static void logWarningWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        if (isWritten(2))
            log(virlo::format(pattern, arguments...));
    }

    template <typename... Arguments>
    static void logNoticeWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        if (isWritten(3))
            log(virlo::format(pattern, arguments...));
    }

    template <typename... Arguments>
    static void logInfoWithFormat(std::string_view pattern, const Arguments&... arguments)
    {
        if (isWritten(4))
            log(virlo::format(pattern, arguments...));
    }

private:
    [[nodiscard]] static bool isWritten(std::int64_t smallestLevel);
    static void log(std::string message);
};
