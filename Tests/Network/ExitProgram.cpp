#include "URLSession.h"

#include <cstdlib>
#include <memory>
#include <thread>

namespace
{
/// Keeps a request under way for ever: each answer asks again.
void ask(const std::shared_ptr<virlo::URLSession>& session, const virlo::URL& url)
{
    session
        ->dataTask(virlo::URLRequest{url},
                   [session, url](auto, const auto&, const auto&) { ask(session, url); })
        ->resume();
}

struct AsksAtExit {
    std::shared_ptr<virlo::URLSession> session;
    std::optional<virlo::URL> url;

    ~AsksAtExit() { ask(session, *url); }
} asksAtExit;
} // namespace

/// Leaves `main` after so many microseconds, with exchanges under way. Arguments: URL, authorities file,
/// microseconds.
int main(int, char** arguments)
{
    virlo::URLSessionConfiguration configuration;
    configuration.trustedAuthoritiesFile = arguments[2];
    asksAtExit.url = virlo::URL::fromString(arguments[1]);
    asksAtExit.session = virlo::URLSession::sessionWithConfiguration(configuration);
    for (int count = 0; count < 12; ++count)
        ask(asksAtExit.session, *asksAtExit.url);
    std::this_thread::sleep_for(std::chrono::microseconds(std::atoi(arguments[3])));
    return 0;
}
