#include "JSONReading.h"
#include "JSONSerialization.h"
#include "RowName.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace virlo::test
{

namespace
{

using testing::HasSubstr;

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int index = 0; index < times; ++index)
        all += text;
    return all;
}

struct HostileRow {
    const char* name;
    std::string text;
    const char* reason; ///< part of it; null where the text is to be read
};

class HostileJSON : public testing::TestWithParam<HostileRow>
{
};

TEST_P(HostileJSON, IsReadOrRefusedButNeverThrows)
{
    const auto& [name, text, reason] = GetParam();
    const auto result = JSONSerialization::objectWithData(text);
    if (!reason) {
        EXPECT_TRUE(std::holds_alternative<JSON>(result));
        return;
    }
    ASSERT_TRUE(std::holds_alternative<Error>(result));
    const auto& error = std::get<Error>(result);
    EXPECT_EQ(error.domain, JSONSerialization::errorDomain);
    EXPECT_THAT(error.userInfo.at("Reason").get<std::string>(), HasSubstr(reason));
    EXPECT_LE(error.userInfo.dump().size(), 300U) << "the reason must not carry the input";
}

INSTANTIATE_TEST_SUITE_P(
    Table, HostileJSON,
    testing::Values(HostileRow{"Empty", "", "parse error"}, HostileRow{"NullAlone", "null", "top level"},
                    HostileRow{"NumberAlone", " 1 ", "top level"},
                    HostileRow{"TextAlone", "\"x\"", "top level"},
                    HostileRow{"TrailingText", "{} {}", "parse error"},
                    HostileRow{"CutOff", R"({"a":[1,2)", "parse error"},
                    HostileRow{"TooLarge", R"({"a":1e400})", "out_of_range"},
                    HostileRow{"TooSmallIsNothing", R"({"a":1e-400})", nullptr},
                    HostileRow{"InvalidUTF8", "{\"a\":\"\xff\xfe\"}", "parse error"},
                    HostileRow{"LoneSurrogate", R"(["\ud800"])", "parse error"},
                    HostileRow{"HugeToken", repeated("x", 1'000'000), "parse error"},
                    HostileRow{"DeepestAllowed", repeated("[", 512) + repeated("]", 512), nullptr},
                    HostileRow{"TooDeep", repeated("[", 513) + repeated("]", 513), "nested too deeply"},
                    HostileRow{"MillionDeep", repeated("{\"a\":[", 500'000), "nested too deeply"},
                    HostileRow{"BracketsInText", "[\"" + repeated("[{", 2000) + "\\\"[\"]", nullptr},
                    HostileRow{"MillionsOfValues", "[" + repeated("0,", 2'000'000) + "0]",
                               "too many values"}),
    rowName);

TEST(JSONSerialization, LastOfTwoEqualKeysIsUsed)
{
    const auto result = JSONSerialization::objectWithData(R"({"a":{"b":1},"a":[2],"a":"last"})");
    EXPECT_EQ(std::get<JSON>(result), JSON({{"a", "last"}}));
}

TEST(JSONSerialization, TextThatIsNotUTF8CannotBeEncoded)
{
    EXPECT_EQ(std::get<std::string>(JSONSerialization::dataWithObject({{"a", "\xc3\xa4"}})),
              "{\"a\":\"\xc3\xa4\"}");
    EXPECT_TRUE(std::holds_alternative<Error>(JSONSerialization::dataWithObject({{"a", "\xff"}})));
}

struct NumberRow {
    const char* name;
    JSON value;
    std::int64_t integer;
    std::uint64_t unsignedInteger;
    double number;
    bool boolean;
};

class NumberReading : public testing::TestWithParam<NumberRow>
{
};

TEST_P(NumberReading, IsLenientAndBounded)
{
    const auto& row = GetParam();
    const JSON object{{"key", row.value}};
    EXPECT_EQ(JSONReading::integer(object, "key"), row.integer);
    EXPECT_EQ(JSONReading::unsignedInteger(object, "key"), row.unsignedInteger);
    EXPECT_EQ(JSONReading::number(object, "key"), row.number);
    EXPECT_EQ(JSONReading::boolean(object, "key"), row.boolean);
}

constexpr auto mostNegative = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();
constexpr auto mostUnsigned = std::numeric_limits<std::uint64_t>::max();
constexpr auto largest = std::numeric_limits<double>::max();

INSTANTIATE_TEST_SUITE_P(
    Table, NumberReading,
    testing::Values(
        NumberRow{"Text", "12", 12, 12, 12, true}, NumberRow{"Fraction", "4.5", 4, 4, 4.5, true},
        NumberRow{"Word", "abc", 0, 0, 0, false}, NumberRow{"Empty", "", 0, 0, 0, false},
        NumberRow{"Tail", " +12abc", 12, 12, 12, true}, NumberRow{"Signs", "+-1", 0, 0, 0, false},
        NumberRow{"Exponent", "-2.5e2x", -2, 0, -250, true}, NumberRow{"TooLarge", "1e400", 1, 1, 0, false},
        NumberRow{"TooSmall", "1e-400", 1, 1, 0, false},
        NumberRow{"LongDigits", repeated("9", 400), most, mostUnsigned, 0, false},
        NumberRow{"Infinity", "inf", 0, 0, 0, false}, NumberRow{"NotANumberText", "nan", 0, 0, 0, false},
        NumberRow{"Hexadecimal", "0x10", 0, 0, 0, false}, NumberRow{"Yes", "yes", 0, 0, 0, true},
        NumberRow{"True", true, 1, 1, 1, true}, NumberRow{"Negative", -7, -7, 0, -7, true},
        NumberRow{"Unsigned", mostUnsigned, most, mostUnsigned, 0x1p64, true},
        NumberRow{"LargeDouble", 1e30, most, mostUnsigned, 1e30, true},
        NumberRow{"SmallDouble", -1e30, mostNegative, 0, -1e30, true},
        NumberRow{"NotANumber", std::nan(""), 0, 0, 0, false},
        NumberRow{"Infinite", -std::numeric_limits<double>::infinity(), mostNegative, 0, -largest, true},
        NumberRow{"Null", nullptr, 0, 0, 0, false}, NumberRow{"Array", {1, 2}, 0, 0, 0, false},
        NumberRow{"Object", {{"a", 1}}, 0, 0, 0, false}),
    rowName);

TEST(JSONReading, TextAndStringDifferOnNumbers)
{
    const JSON object{{"text", ""},  {"whole", 4.0},          {"fraction", 4.5},
                      {"yes", true}, {"list", JSON::array()}, {"none", nullptr}};
    EXPECT_EQ(JSONReading::string(object, "text"), "");
    EXPECT_EQ(JSONReading::string(object, "whole"), std::nullopt);
    EXPECT_EQ(JSONReading::text(object, "text"), "");
    EXPECT_EQ(JSONReading::text(object, "whole"), "4");
    EXPECT_EQ(JSONReading::text(object, "fraction"), "4.5");
    EXPECT_EQ(JSONReading::text(object, "yes"), "1");
    for (const char* const key : {"list", "none", "missing"})
        EXPECT_EQ(JSONReading::text(object, key), std::nullopt) << key;
}

} // namespace

} // namespace virlo::test
