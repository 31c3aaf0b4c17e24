#include "FileEndpoint.h"

#include "ByteRange.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace adserver
{

namespace
{

namespace fs = std::filesystem;

constexpr std::array<std::pair<std::string_view, std::string_view>, 16> contentTypes{{
    {".jpg", "image/jpeg"},
    {".jpeg", "image/jpeg"},
    {".png", "image/png"},
    {".gif", "image/gif"},
    {".webp", "image/webp"},
    {".svg", "image/svg+xml"},
    {".json", "application/json"},
    {".xml", "application/xml"},
    {".html", "text/html; charset=utf-8"},
    {".txt", "text/plain; charset=utf-8"},
    {".mp4", "video/mp4"},
    {".webm", "video/webm"},
    {".mov", "video/quicktime"},
    {".m3u8", "application/vnd.apple.mpegurl"},
    {".ts", "video/mp2t"},
    {".mpd", "application/dash+xml"},
}};

std::string contentType(const fs::path& file)
{
    const auto extension = file.extension().string();
    const auto* const found = std::find_if(contentTypes.begin(), contentTypes.end(),
                                           [&](const auto& entry) { return entry.first == extension; });
    return found == contentTypes.end() ? "application/octet-stream" : std::string(found->second);
}

/// Nothing when there is no such file within the folder, links followed.
std::shared_ptr<FileBody> openWithin(const fs::path& folder, const std::string& name)
{
    std::error_code failure;
    const auto root = fs::canonical(folder, failure);
    if (failure)
        return nullptr;
    const auto file = fs::canonical(root / name, failure);
    if (failure || std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first != root.end())
        return nullptr;
    return FileBody::open(file);
}

} // namespace

std::optional<Response> FileEndpoint::respond(const ServerRequest& request) const
{
    if (!request.path.starts_with(campaignFilesPath))
        return std::nullopt;
    if (request.method != "GET" && request.method != "HEAD")
        return Response::error(405, "METHOD_NOT_ALLOWED");
    const auto name = request.path.substr(std::string_view(campaignFilesPath).size());
    if (name.empty() || name.starts_with('/') || name.find('\0') != name.npos)
        return Response::notFound();

    std::shared_ptr<FileBody> file;
    for (const auto& folder : m_campaigns.folders())
        if (!file)
            file = openWithin(folder, name);
    if (!file)
        return Response::notFound();

    Response response;
    response.contentType = contentType(name);
    const auto tag = file->entityTag();
    response.headers = {{"Accept-Ranges", "bytes"}, {"ETag", tag}, {"Cache-Control", "max-age=60"}};
    if (request.header("if-none-match") == tag) {
        response.status = 304;
        return response;
    }
    const auto ifRange = request.header("if-range");
    const auto range =
        readByteRange(ifRange.empty() || ifRange == tag ? request.header("range") : "", file->size());
    const auto whole = std::to_string(file->size());
    if (range.kind == ByteRange::Kind::outside) {
        auto refusal = Response::error(416, "BAD_RANGE");
        refusal.headers["Content-Range"] = "bytes */" + whole;
        return refusal;
    }
    if (range.kind == ByteRange::Kind::part) {
        response.status = 206;
        response.headers["Content-Range"] =
            "bytes " + std::to_string(range.first) + '-' + std::to_string(range.last) + '/' + whole;
        file->narrow(range.first, range.last - range.first + 1);
    }
    response.body = std::move(file);
    return response;
}

} // namespace adserver
