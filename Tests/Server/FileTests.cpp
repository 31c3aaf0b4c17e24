#include "ServerTest.h"

#include <filesystem>

using Files = ServerTest;

constexpr auto image = "/campaigns/image.jpg";

TEST_F(Files, AreServedInPartsAndNeverFromOutsideTheirFolder)
{
    folder.write("secret.txt", "secret");
    std::filesystem::create_symlink(folder.path("secret.txt"), folder.path("campaigns/link.txt"));

    const struct {
        std::string path;
        std::string range;
        int status;
        std::string body;
        std::string contentRange;
    } rows[] = {{image, "", 200, "0123456789", ""},
                {image, "bytes=2-4", 206, "234", "bytes 2-4/10"},
                {image, "bytes=7-", 206, "789", "bytes 7-9/10"},
                {image, "bytes=8-99", 206, "89", "bytes 8-9/10"},
                {image, "bytes=-3", 206, "789", "bytes 7-9/10"},
                {image, "bytes=10-", 416, "", "bytes */10"},
                {image, "bytes=0-1,3-4", 200, "0123456789", ""},
                {"/campaigns/../secret.txt", "", 404, "", ""},
                {"/campaigns/%2e%2e/secret.txt", "", 404, "", ""},
                {"/campaigns/..%2fsecret.txt", "", 404, "", ""},
                {"/campaigns//etc/passwd", "", 404, "", ""},
                {"/campaigns/link.txt", "", 404, "", ""},
                {"/campaigns/image.jpg%00.txt", "", 404, "", ""}};

    for (const auto& row : rows) {
        const httplib::Headers range{{"Range", row.range}};
        const auto response = makeClient().Get(row.path, row.range.empty() ? httplib::Headers() : range);
        EXPECT_EQ(response->status, row.status) << row.path << ' ' << row.range;
        EXPECT_EQ(response->status < 300 ? response->body : "", row.body) << row.path << ' ' << row.range;
        EXPECT_EQ(response->get_header_value("Content-Range"), row.contentRange) << row.range;
    }
}

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
