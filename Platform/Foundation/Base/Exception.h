#pragma once

#include "Export.h"

#include <stdexcept>
#include <string>

namespace virlo
{

/// Misuse of the library by its host, such as creating a second instance of a singleton. Never raised for bad
/// data.
class VIRLO_EXPORT Exception : public std::runtime_error
{
public:
    Exception(std::string name, const std::string& reason);

    [[nodiscard]] const std::string& name() const noexcept { return m_name; }

    [[nodiscard]] std::string reason() const { return what(); }

    /// The name used when a call violates the contract of its class.
    static constexpr const char* internalInconsistency = "NSInternalInconsistencyException";

private:
    std::string m_name;
};

[[noreturn]] void raise(std::string name, const std::string& reason);

} // namespace virlo
