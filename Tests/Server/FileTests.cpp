#include "ServerTest.h"

#include <filesystem>

namespace
{

struct FileRow {
    const char* name;
    const char* path;
    const char* range;
    int status;
    const char* body;
    const char* contentRange;
};

class Files : public ServerTest, public testing::WithParamInterface<FileRow>
{
};

} // namespace

TEST_P(Files, AreServedInPartsAndNeverFromOutsideTheirFolder)
{
    folder.write("secret.txt", "secret");
    std::filesystem::create_symlink(folder.path("secret.txt"), folder.path("campaigns/link.txt"));
    const httplib::Headers range{{"Range", GetParam().range}};
    const auto response = makeClient().Get(GetParam().path, *GetParam().range ? range : httplib::Headers());
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, GetParam().status);
    EXPECT_EQ(response->status < 300 ? response->body : "", GetParam().body);
    EXPECT_EQ(response->get_header_value("Content-Range"), GetParam().contentRange);
    EXPECT_EQ(response->body.find("secret"), std::string::npos);
}

constexpr auto image = "/campaigns/image.jpg";

INSTANTIATE_TEST_SUITE_P(, Files,
                         testing::Values(FileRow{"Whole", image, "", 200, "0123456789", ""},
                                         FileRow{"Middle", image, "bytes=2-4", 206, "234", "bytes 2-4/10"},
                                         FileRow{"ToTheEnd", image, "bytes=7-", 206, "789", "bytes 7-9/10"},
                                         FileRow{"BeyondTheEnd", image, "bytes=8-99", 206, "89",
                                                 "bytes 8-9/10"},
                                         FileRow{"Last", image, "bytes=-3", 206, "789", "bytes 7-9/10"},
                                         FileRow{"Outside", image, "bytes=10-", 416, "", "bytes */10"},
                                         FileRow{"Several", image, "bytes=0-1,3-4", 200, "0123456789", ""},
                                         FileRow{"DotDot", "/campaigns/../secret.txt", "", 404, "", ""},
                                         FileRow{"Encoded", "/campaigns/%2e%2e/secret.txt", "", 404, "", ""},
                                         FileRow{"Slash", "/campaigns/..%2fsecret.txt", "", 404, "", ""},
                                         FileRow{"Absolute", "/campaigns//etc/passwd", "", 404, "", ""},
                                         FileRow{"Link", "/campaigns/link.txt", "", 404, "", ""},
                                         FileRow{"Zero", "/campaigns/image.jpg%00.txt", "", 404, "", ""}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(Files, HaveTypesAndTags)
{
    auto client = makeClient();
    const auto head = client.Head(image);
    EXPECT_EQ(head->get_header_value("Content-Type"), "image/jpeg");
    EXPECT_EQ(head->get_header_value("Content-Length"), "10");
    const auto tag = head->get_header_value("ETag");
    EXPECT_EQ(client.Get(image, {{"If-None-Match", tag}})->status, 304);
    folder.write("campaigns/image.jpg", "changed");
    EXPECT_EQ(client.Get(image, {{"If-None-Match", tag}})->body, "changed");
    EXPECT_EQ(client.Get(image, {{"Range", "bytes=0-1"}, {"If-Range", tag}})->status, 200);
}
