#include "Response.h"

#include "JSONText.h"

namespace adserver
{

Response Response::json(const nlohmann::json& value, int status)
{
    Response response;
    response.status = status;
    response.contentType = "application/json";
    response.text = printJSON(value);
    return response;
}

Response Response::error(int status, const std::string& code, const std::string& reason)
{
    nlohmann::json value{{"error", code}};
    if (!reason.empty())
        value["reason"] = reason;
    return json(value, status);
}

} // namespace adserver
