#include "URL.h"

#include "RowName.h"

#include <gtest/gtest.h>

namespace virlo
{
namespace
{

URL url(std::string_view text)
{
    return URL::fromString(text).value();
}

struct TextRow {
    const char* name;
    std::string_view text;
    std::optional<std::string> kept;
};

class URLText : public testing::TestWithParam<TextRow>
{
};

TEST_P(URLText, IsKeptOrRefused)
{
    const auto made = URL::fromString(GetParam().text);
    ASSERT_EQ(made.has_value(), GetParam().kept.has_value());
    if (made) {
        EXPECT_EQ(made->absoluteString(), *GetParam().kept);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, URLText,
    testing::Values(TextRow{"Plain", "https://h/a?b#c", "https://h/a?b#c"},
                    TextRow{"WhiteSpaceAround", " \r\n\thttp://h/a \n", "http://h/a"},
                    TextRow{"Macros", "http://x/[CACHEBUSTING]?a=[TS]", "http://x/[CACHEBUSTING]?a=[TS]"},
                    TextRow{"BeyondASCII", "http://h/\xC3\xBC", "http://h/\xC3\xBC"},
                    TextRow{"Relative", "a/b", "a/b"}, TextRow{"Empty", "", std::nullopt},
                    TextRow{"OnlyWhiteSpace", " \n ", std::nullopt},
                    TextRow{"WhiteSpaceInside", "http://h/a b", std::nullopt},
                    TextRow{"LineEndInside", "http://h/a\nX: y", std::nullopt},
                    TextRow{"Control", "http://h/\x01", std::nullopt},
                    TextRow{"Delete", "http://h/\x7F", std::nullopt},
                    TextRow{"NUL", std::string_view("http://h/\0b", 11), std::nullopt}),
    test::rowName);

struct PartsRow {
    const char* name;
    const char* text;
    const char* scheme;
    const char* host;
    const char* path;
};

class URLParts : public testing::TestWithParam<PartsRow>
{
};

TEST_P(URLParts, AreFound)
{
    const URL made = url(GetParam().text);
    EXPECT_EQ(made.scheme(), GetParam().scheme);
    EXPECT_EQ(made.host(), GetParam().host);
    EXPECT_EQ(made.path(), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(Rows, URLParts,
                         testing::Values(PartsRow{"Whole", "HTTPS://user:pw@host.tv:8443/a/b%20c?q=/x#f",
                                                  "https", "host.tv", "/a/b%20c"},
                                         PartsRow{"NoPath", "http://host?q", "http", "host", ""},
                                         PartsRow{"IPv6", "http://[::1]:80/x", "http", "::1", "/x"},
                                         PartsRow{"UnclosedBracket", "http://[::1/x", "http", "", "/x"},
                                         PartsRow{"Opaque", "mailto:a@b.tv", "mailto", "", "a@b.tv"},
                                         PartsRow{"Relative", "a/b:c?d", "", "", "a/b:c"},
                                         PartsRow{"OnlyColon", ":x", "", "", ":x"},
                                         PartsRow{"NoAuthority", "file:///etc/x", "file", "", "/etc/x"}),
                         test::rowName);

struct JoinRow {
    const char* name;
    const char* base;
    const char* component;
    const char* joined;
};

class URLJoin : public testing::TestWithParam<JoinRow>
{
};

TEST_P(URLJoin, HasOneSlashBetweenAndIsEncoded)
{
    EXPECT_EQ(url(GetParam().base).appendingPathComponent(GetParam().component).absoluteString(),
              GetParam().joined);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, URLJoin,
    testing::Values(
        JoinRow{"KeepsTrailingSlash", "https://h:1/base", "app/sess/", "https://h:1/base/app/sess/"},
        JoinRow{"SlashesMeet", "https://h:1/base/", "/app", "https://h:1/base/app"},
        JoinRow{"NoPath", "https://h:1", "app", "https://h:1/app"},
        JoinRow{"BeforeTheQuery", "https://h/a?q=1#f", "b", "https://h/a/b?q=1#f"},
        JoinRow{"Encoded", "https://h", "app/sess/a b/\xC3\xBC", "https://h/app/sess/a%20b/%C3%BC"},
        JoinRow{"Delimiters", "https://h", "a?b#c%41[d]", "https://h/a%3Fb%23c%2541%5Bd%5D"}),
    test::rowName);

TEST(URLQuery, ItemsFollowTheExistingQueryAndPrecedeTheFragment)
{
    EXPECT_EQ(url("http://h/p#f").appendingQueryItems({{"a b", "c&d=\xC3\xBC"}, {"e", ""}}).absoluteString(),
              "http://h/p?a%20b=c%26d%3D%C3%BC&e=#f");
    EXPECT_EQ(url("http://h/p?x").appendingQueryItems({{"a", "1"}}).absoluteString(), "http://h/p?x&a=1");
    EXPECT_EQ(url("http://h/p?").appendingQueryItems({{"a", "1"}}).absoluteString(), "http://h/p?a=1");
    EXPECT_EQ(url("http://h/p").appendingQueryItems({}).absoluteString(), "http://h/p");
}

} // namespace
} // namespace virlo
