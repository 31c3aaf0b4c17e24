#include "Answer.h"

#include "JSONText.h"

namespace adserver
{

Answer Answer::json(const nlohmann::json& value, int status)
{
    Answer answer;
    answer.status = status;
    answer.contentType = "application/json";
    answer.text = printJSON(value);
    return answer;
}

Answer Answer::error(int status, const std::string& code, const std::string& reason)
{
    nlohmann::json value{{"error", code}};
    if (!reason.empty())
        value["reason"] = reason;
    return json(value, status);
}

} // namespace adserver
