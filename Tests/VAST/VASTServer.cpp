#include "VASTServer.h"

#include "Settle.h"
#include "URLSession.h"

#include <algorithm>

#if defined(__SANITIZE_THREAD__)
// Debian's build of the server's HTTP library is not instrumented: how it guards its own tables cannot be
// seen.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions()
{
    return "called_from_lib:libcpp-httplib.so\n";
}
#endif

namespace virlo::test
{

VASTServer::VASTServer() : server({.plainHTTP = true, .stateFolder = folder.path("server")})
{
    server.start();
}

VASTServer::~VASTServer()
{
    EXPECT_TRUE(URLSession::drain(Seconds(10)));
    settleAll();
}

void VASTServer::serve(const std::string& path, const std::string& document)
{
    server.setFault({.path = path, .body = document, .contentType = "application/xml"});
}

std::size_t VASTServer::requestCount(const std::string& path) const
{
    const auto all = server.requests();
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](const auto& each) { return each.path == path; }));
}

} // namespace virlo::test
