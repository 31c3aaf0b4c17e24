#include "FileTask.h"

#include "GlobalQueue.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

using virlo::URLSession;

FileTask::FileTask(std::string path, virlo::URL url, URLSession::Receiver receiver,
                   URLSession::Completion completion)
    : m_path(std::move(path))
    , m_url(std::move(url))
    , m_receiver(std::move(receiver))
    , m_completion(std::move(completion))
{
}

void FileTask::resume()
{
    virlo::GlobalQueue::background().async([self = shared_from_this()] { self->run(); });
}

void FileTask::run()
{
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    const std::unique_ptr<std::FILE, Close> file(std::fopen(m_path.c_str(), "rbe"));
    if (!file)
        return complete(error(URLSession::failed, std::strerror(errno)));
    const virlo::HTTPURLResponse response{m_url, 200};
    std::array<char, 65'536> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file.get())) {
        if (m_cancelled || !m_receiver({bytes.data(), count}, response))
            return complete(error(URLSession::cancelled, "Cancelled."));
    }
    if (std::ferror(file.get()) != 0)
        return complete(error(URLSession::failed, std::strerror(errno)));
    complete(std::nullopt);
}

void FileTask::complete(const virlo::OptionalError& error)
{
    m_completion({}, error ? std::nullopt : std::optional(virlo::HTTPURLResponse{m_url, 200}), error);
}

virlo::Error FileTask::error(URLSession::ErrorCode code, const char* reason) const
{
    return {URLSession::errorDomain, code, {{"Reason", reason}, {"URL", m_url.absoluteString()}}};
}
