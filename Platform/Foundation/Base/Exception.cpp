#include "Exception.h"

#include <utility>

namespace virlo
{

Exception::Exception(std::string name, const std::string& reason)
    : std::runtime_error(reason)
    , m_name(std::move(name))
{
}

void raise(std::string name, const std::string& reason)
{
    throw Exception(std::move(name), reason);
}

} // namespace virlo
