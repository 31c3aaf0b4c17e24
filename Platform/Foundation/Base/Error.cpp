#include "Error.h"

#include "StringFormat.h"

namespace virlo
{

std::string describe(const Error& error)
{
    return "Error Domain=" + error.domain + " Code=" + std::to_string(error.code) +
           " UserInfo=" + describe(error.userInfo);
}

} // namespace virlo
