#include "Guarded.h"

#include "SystemLog.h"

#include <exception>
#include <string>

namespace virlo
{

namespace
{

void report(const char* where, const char* what) noexcept
{
    try {
        systemLog("Uncaught exception in " + std::string(where) + ": " + what);
    } catch (...) { // no memory for the line
    }
}

} // namespace

void runGuarded(const std::function<void()>& work, const char* where) noexcept
{
    try {
        work();
    } catch (const std::exception& error) {
        report(where, error.what());
    } catch (...) {
        report(where, "unknown");
    }
}

} // namespace virlo
