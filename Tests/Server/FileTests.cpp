#include "ServerTest.h"

#include <filesystem>

namespace
{

struct RangeRow {
    const char* name;
    const char* range;
    int status;
    const char* body;
    const char* contentRange;
};

class Ranges : public ServerTest, public testing::WithParamInterface<RangeRow>
{
};

struct EscapeRow {
    const char* name;
    const char* path;
};

class Escapes : public ServerTest, public testing::WithParamInterface<EscapeRow>
{
};

class Files : public ServerTest
{
};

} // namespace

TEST_P(Ranges, GiveTheirPart)
{
    const auto response = makeClient().Get("/campaigns/picture.jpg", {{"Range", GetParam().range}});
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, GetParam().status);
    EXPECT_EQ(GetParam().status == 416 ? "" : response->body, GetParam().body);
    EXPECT_EQ(response->get_header_value("Content-Range"), GetParam().contentRange);
}

INSTANTIATE_TEST_SUITE_P(, Ranges,
                         testing::Values(RangeRow{"Middle", "bytes=2-4", 206, "234", "bytes 2-4/10"},
                                         RangeRow{"ToTheEnd", "bytes=7-", 206, "789", "bytes 7-9/10"},
                                         RangeRow{"BeyondTheEnd", "bytes=8-99", 206, "89", "bytes 8-9/10"},
                                         RangeRow{"Last", "bytes=-3", 206, "789", "bytes 7-9/10"},
                                         RangeRow{"MoreThanAll", "bytes=-99", 206, "0123456789",
                                                  "bytes 0-9/10"},
                                         RangeRow{"Outside", "bytes=10-", 416, "", "bytes */10"},
                                         RangeRow{"None", "bytes=-0", 416, "", "bytes */10"},
                                         RangeRow{"Several", "bytes=0-1,3-4", 200, "0123456789", ""},
                                         RangeRow{"Reversed", "bytes=4-2", 416, "", ""}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Escapes, AreNotFound)
{
    folder.write("secret.txt", "secret");
    folder.write("campaigns-of-others/secret.txt", "secret");
    std::filesystem::create_symlink(folder.path("secret.txt"), folder.path("campaigns/link.txt"));
    std::filesystem::create_directory(folder.path("campaigns/sub"));
    const auto response = makeClient().Get(GetParam().path);
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, 404);
    EXPECT_EQ(response->body.find("secret"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, Escapes,
                         testing::Values(EscapeRow{"DotDot", "/campaigns/../secret.txt"},
                                         EscapeRow{"Encoded", "/campaigns/%2e%2e/secret.txt"},
                                         EscapeRow{"EncodedSlash", "/campaigns/..%2fsecret.txt"},
                                         EscapeRow{"Within", "/campaigns/sub/../../secret.txt"},
                                         EscapeRow{"Sibling", "/campaigns/../campaigns-of-others/secret.txt"},
                                         EscapeRow{"Absolute", "/campaigns//etc/passwd"},
                                         EscapeRow{"Link", "/campaigns/link.txt"},
                                         EscapeRow{"Folder", "/campaigns/sub"},
                                         EscapeRow{"Nothing", "/campaigns/"},
                                         EscapeRow{"Zero", "/campaigns/picture.jpg%00.txt"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(Files, HaveTypesLengthsAndTags)
{
    auto client = makeClient();
    const auto head = client.Head("/campaigns/picture.jpg");
    ASSERT_TRUE(head);
    EXPECT_EQ(head->get_header_value("Content-Type"), "image/jpeg");
    EXPECT_EQ(head->get_header_value("Content-Length"), "10");
    const auto tag = head->get_header_value("ETag");
    EXPECT_EQ(client.Get("/campaigns/picture.jpg", {{"If-None-Match", tag}})->status, 304);
    EXPECT_EQ(client.Get("/campaigns/picture.jpg", {{"Range", "bytes=0-1"}, {"If-Range", tag}})->status, 206);

    folder.write("campaigns/picture.jpg", "changed");
    EXPECT_EQ(client.Get("/campaigns/picture.jpg", {{"If-None-Match", tag}})->body, "changed");
    EXPECT_EQ(client.Get("/campaigns/picture.jpg", {{"Range", "bytes=0-1"}, {"If-Range", tag}})->status, 200);
}

TEST_F(Files, LargerThanABufferComeWhole)
{
    std::string large(3'000'000, '\0');
    for (size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<char>(i * 31 % 251);
    folder.write("campaigns/large.png", large);
    const auto response = makeClient().Get("/campaigns/large.png");
    ASSERT_TRUE(response);
    EXPECT_TRUE(response->body == large);
}
