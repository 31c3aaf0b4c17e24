#include "AdServerFault.h"

#include "JSONChecker.h"
#include "JSONText.h"
#include "ResponseBody.h"

#include <limits>
#include <stdexcept>

namespace adserver
{

namespace
{

constexpr double longestDelay = 86400;
constexpr std::uint64_t largestBody = std::uint64_t{1} << 40U;

int statusCode(const JSONChecker& value)
{
    const auto status = value.wholeNumber(599);
    if (status < 200)
        value.fail("must be a whole number from 200 to 599");
    return static_cast<int>(status);
}

std::chrono::milliseconds duration(const JSONChecker& value)
{
    return std::chrono::milliseconds(static_cast<std::int64_t>(value.number(0, longestDelay) * 1000));
}

std::uint64_t sizeOfBody(const JSONChecker& value)
{
    const auto size = value.wholeNumber(largestBody);
    if (size < FillerBody::minimum)
        value.fail("must be at least " + std::to_string(FillerBody::minimum));
    return size;
}

} // namespace

AdServerFault AdServerFault::fromJSON(const nlohmann::json& value)
{
    AdServerFault fault;
    const JSONChecker checker(value);
    fault.path = checker.required("path").nonEmptyText();
    checker.eachMember([&](const std::string& key, const JSONChecker& member) {
        if (key == "method")
            fault.method = member.oneOf({"GET", "HEAD", "POST", "PUT", "DELETE", "PATCH", "OPTIONS"});
        else if (key == "delay")
            fault.delay = duration(member);
        else if (key == "neverResponds")
            fault.neverResponds = member.truth();
        else if (key == "drop")
            fault.drop = member.truth();
        else if (key == "status")
            fault.status = statusCode(member);
        else if (key == "body")
            fault.body = member.value().is_string() ? member.text() : printJSON(member.value());
        else if (key == "contentType")
            fault.contentType = member.nonEmptyText();
        else if (key == "headers")
            member.eachMember([&](const std::string& name, const JSONChecker& header) {
                fault.headers[name] = header.text();
            });
        else if (key == "bodySize")
            fault.bodySize = sizeOfBody(member);
        else if (key == "chunked")
            fault.chunked = member.truth();
        else if (key == "cutBodyAfter")
            fault.cutBodyAfter = member.wholeNumber(largestBody);
        else if (key == "stallBodyAfter")
            fault.stallBodyAfter = member.wholeNumber(largestBody);
        else if (key == "stallFor")
            fault.stallFor = duration(member);
        else if (key == "bytesPerSecond")
            fault.bytesPerSecond = member.wholeNumber(largestBody);
        else if (key == "times")
            fault.times = static_cast<unsigned>(member.wholeNumber(std::numeric_limits<unsigned>::max()));
        else if (key != "path")
            member.failAsUnknownKey();
    });
    if (fault.stallFor && !fault.stallBodyAfter)
        throw std::invalid_argument("stallFor: needs \"stallBodyAfter\" beside it");
    return fault;
}

nlohmann::json AdServerFault::toJSON() const
{
    const auto seconds = [](std::chrono::milliseconds time) {
        return static_cast<double>(time.count()) / 1000;
    };
    nlohmann::json value{{"path", path}};
    const auto add = [&](const char* key, bool isSet, const nlohmann::json& member) {
        if (isSet)
            value[key] = member;
    };
    add("method", !method.empty(), method);
    add("delay", delay.count() > 0, seconds(delay));
    add("neverResponds", neverResponds, true);
    add("drop", drop, true);
    add("status", status.has_value(), status.value_or(0));
    add("body", body.has_value(), body.value_or(""));
    add("contentType", contentType.has_value(), contentType.value_or(""));
    add("headers", !headers.empty(), headers);
    add("bodySize", bodySize.has_value(), bodySize.value_or(0));
    add("chunked", chunked, true);
    add("cutBodyAfter", cutBodyAfter.has_value(), cutBodyAfter.value_or(0));
    add("stallBodyAfter", stallBodyAfter.has_value(), stallBodyAfter.value_or(0));
    add("stallFor", stallFor.has_value(), seconds(stallFor.value_or(std::chrono::milliseconds(0))));
    add("bytesPerSecond", bytesPerSecond > 0, bytesPerSecond);
    add("times", times > 0, times);
    return value;
}

} // namespace adserver
