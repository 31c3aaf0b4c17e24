#include "VASTExplainer.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <list>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace adserver
{

namespace
{

using namespace std::chrono_literals;

constexpr auto limit = 10s;
constexpr std::size_t longestReport = std::size_t{4} << 20U;

/// The document in a file that goes with this object.
class DocumentFile
{
public:
    explicit DocumentFile(const std::string& text)
        : m_name((std::filesystem::temp_directory_path() / "vast-XXXXXX").string())
    {
        const int descriptor = ::mkostemp(m_name.data(), O_CLOEXEC);
        m_isWritten = descriptor >= 0 &&
                      ::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        if (descriptor >= 0)
            ::close(descriptor);
    }

    ~DocumentFile() { ::unlink(m_name.c_str()); }

    DocumentFile(const DocumentFile&) = delete;
    DocumentFile& operator=(const DocumentFile&) = delete;

    [[nodiscard]] bool isWritten() const { return m_isWritten; }

    [[nodiscard]] const std::string& name() const { return m_name; }

private:
    std::string m_name;
    bool m_isWritten = false;
};

/// 0 when the program cannot be started. `output` is the end to read from.
pid_t start(std::vector<std::string> words, int& output)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return 0;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // This process holds its signals back; the child must not inherit that.
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int failure =
        ::posix_spawnp(&child, words.front().c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    output = ends[0];
    if (failure == 0)
        return child;
    ::close(output);
    return 0;
}

/// Until its end; false when the time was up or there was too much.
bool readAll(int descriptor, std::string& text)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    std::array<char, 16384> buffer{};
    while (text.size() < longestReport) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd source{descriptor, POLLIN, 0};
        if (left <= 0ms || ::poll(&source, 1, static_cast<int>(left.count())) <= 0)
            return false;
        const auto count = ::read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return false;
}

} // namespace

VASTExplainer::VASTExplainer() : m_program("vast-inspect")
{
    std::error_code failure;
    const auto beside = std::filesystem::read_symlink("/proc/self/exe", failure).replace_filename(m_program);
    if (!failure && ::access(beside.c_str(), X_OK) == 0)
        m_program = beside;
}

Response VASTExplainer::explain(const std::vector<Document>& documents) const
{
    std::list<DocumentFile> files;
    std::vector<std::string> words{m_program, "--explain"};
    bool areWritten = !documents.empty();
    for (const auto& [url, text] : documents) {
        files.emplace_back(text);
        areWritten = areWritten && files.back().isWritten();
        words.insert(words.end(), {"--known", url, files.back().name()});
    }
    if (!areWritten)
        return Response::error(500, "NO_TEMPORARY_FILE");
    words.push_back(documents.front().first);
    int output = -1;
    const pid_t child = start(std::move(words), output);
    if (child == 0)
        return Response::error(501, "NO_VAST_INSPECT", "vast-inspect is not beside ad-server");
    Response response;
    response.contentType = "application/json";
    const bool isWhole = readAll(output, response.text);
    ::close(output);
    if (!isWhole)
        ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    // It ends with 1 where the document is wrong, which is what its report is about.
    const bool hasReport = isWhole && WIFEXITED(status) && WEXITSTATUS(status) < 2 && !response.text.empty();
    return hasReport ? response : Response::error(502, "VAST_INSPECT_FAILED");
}

} // namespace adserver
