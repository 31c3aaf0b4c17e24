#include "URL.h"

#include <gtest/gtest.h>

namespace virlo
{
namespace
{

URL url(std::string_view text)
{
    return URL::fromString(text).value();
}

TEST(URL, KeepsItsTextWithoutSurroundingWhiteSpace)
{
    for (const std::string_view text :
         {"https://h/a?b#c", "http://x/[CACHEBUSTING]?a=[TS]", "http://h/\xC3\xBC", "a/b"}) {
        EXPECT_EQ(url(text).absoluteString(), text);
        EXPECT_EQ(url(" \r\n\t" + std::string(text) + " \n").absoluteString(), text);
    }
}

TEST(URL, IsNoneOfTextWithWhiteSpaceOrControlCharactersInside)
{
    for (const std::string_view text :
         {std::string_view(""), std::string_view(" \n "), std::string_view("http://h/a b"),
          std::string_view("http://h/a\nX: y"), std::string_view("http://h/\x01"),
          std::string_view("http://h/\x7F"), std::string_view("http://h/\0b", 11)})
        EXPECT_FALSE(URL::fromString(text)) << text;
}

TEST(URL, TellsItsParts)
{
    struct Row {
        const char* text;
        const char* scheme;
        const char* host;
        const char* path;
        const char* origin;
    };

    for (const auto& row : {
             Row{"HTTPS://user:pw@host.tv:8443/a/b%20c?q=/x#f", "https", "host.tv", "/a/b%20c",
                 "HTTPS://user:pw@host.tv:8443"},
             Row{"http://host?q", "http", "host", "", "http://host"},
             Row{"http://[::1]:80/x", "http", "::1", "/x", "http://[::1]:80"},
             Row{"http://[::1/x", "http", "", "/x", "http://[::1"},
             Row{"mailto:a@b.tv", "mailto", "", "a@b.tv", ""},
             Row{"a/b:c?d", "", "", "a/b:c", ""},
             Row{":x", "", "", ":x", ""},
             Row{"file:///etc/x", "file", "", "/etc/x", "file://"},
         }) {
        SCOPED_TRACE(row.text);
        const URL made = url(row.text);
        EXPECT_EQ(made.scheme(), row.scheme);
        EXPECT_EQ(made.host(), row.host);
        EXPECT_EQ(made.path(), row.path);
        EXPECT_EQ(made.origin(), row.origin);
    }
}

TEST(URL, JoinsPathComponentsEncodedAndWithOneSlashBetween)
{
    struct Row {
        const char* base;
        const char* component;
        const char* joined;
    };

    for (const auto& row : {
             Row{"https://h:1/base", "app/sess/", "https://h:1/base/app/sess/"},
             Row{"https://h:1/base/", "/app", "https://h:1/base/app"},
             Row{"https://h:1", "app", "https://h:1/app"},
             Row{"https://h/a?q=1#f", "b", "https://h/a/b?q=1#f"},
             Row{"https://h", "app/sess/a b/\xC3\xBC", "https://h/app/sess/a%20b/%C3%BC"},
             Row{"https://h", "a?b#c%41[d]", "https://h/a%3Fb%23c%2541%5Bd%5D"},
         })
        EXPECT_EQ(url(row.base).appendingPathComponent(row.component).absoluteString(), row.joined);
}

TEST(URL, AddsQueryItemsAfterTheExistingQueryAndBeforeTheFragment)
{
    EXPECT_EQ(url("http://h/p#f").appendingQueryItems({{"a b", "c&d=\xC3\xBC"}, {"e", ""}}).absoluteString(),
              "http://h/p?a%20b=c%26d%3D%C3%BC&e=#f");
    EXPECT_EQ(url("http://h/p?x").appendingQueryItems({{"a", "1"}}).absoluteString(), "http://h/p?x&a=1");
    EXPECT_EQ(url("http://h/p?").appendingQueryItems({{"a", "1"}}).absoluteString(), "http://h/p?a=1");
    EXPECT_EQ(url("http://h/p").appendingQueryItems({}).absoluteString(), "http://h/p");
}

} // namespace
} // namespace virlo
