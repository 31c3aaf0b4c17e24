#include "VASTServer.h"

#include "Settle.h"
#include "URLSession.h"

#include <algorithm>

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

std::size_t VASTServer::asked(const std::string& path) const
{
    const auto all = server.exchanges();
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](const auto& each) { return each.path == path; }));
}

} // namespace virlo::test
