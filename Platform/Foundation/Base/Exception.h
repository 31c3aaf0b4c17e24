#pragma once

#include "Export.h"

#include <stdexcept>
#include <string>

namespace virlo
{

/// A host's misuse of the library, such as making a second instance of a singleton. Bad data from outside
/// never raises one.
class VIRLO_EXPORT Exception : public std::runtime_error
{
public:
    Exception(std::string name, const std::string& reason);

    [[nodiscard]] const std::string& name() const noexcept { return m_name; }

    [[nodiscard]] std::string reason() const { return what(); }

    /// The name for a class used in a way that its contract forbids.
    static constexpr const char* internalInconsistency = "NSInternalInconsistencyException";

private:
    std::string m_name;
};

[[noreturn]] void raise(std::string name, const std::string& reason);

} // namespace virlo
