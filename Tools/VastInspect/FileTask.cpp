#include "FileTask.h"

#include "GlobalQueue.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

using virlo::URLSession;

FileTask::FileTask(std::string path, virlo::URLRequest request, URLSession::Completion completion)
    : m_path(std::move(path))
    , m_request(std::move(request))
    , m_completion(std::move(completion))
{
}

void FileTask::resume()
{
    virlo::GlobalQueue::background().async([self = shared_from_this()] { self->run(); });
}

void FileTask::run() const
{
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    const std::unique_ptr<std::FILE, Close> file(std::fopen(m_path.c_str(), "rbe"));
    if (!file)
        return fail(URLSession::failed, std::strerror(errno));
    std::string data;
    std::array<char, 65'536> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file.get())) {
        if (count > m_request.maximumBodySize - data.size())
            return fail(URLSession::bodyTooLong, "The document is too long.");
        data.append(bytes.data(), count);
    }
    if (std::ferror(file.get()) != 0)
        return fail(URLSession::failed, std::strerror(errno));
    m_completion(std::move(data), virlo::HTTPURLResponse{m_request.url, 200}, std::nullopt);
}

void FileTask::fail(URLSession::ErrorCode code, const char* reason) const
{
    m_completion({}, std::nullopt,
                 virlo::Error{URLSession::errorDomain,
                              code,
                              {{"Reason", reason}, {"URL", m_request.url.absoluteString()}}});
}
