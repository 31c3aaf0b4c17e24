// bench-responses CERTIFICATE KEY: an HTTPS server that responds to everything at once with the same small
// JSON; it leaves the processor to those who are measured against it. Prints its port.

#include <httplib.h>

#include <cstdio>

int main(int count, char** arguments)
{
    if (count != 3)
        return 2;
    httplib::SSLServer server(arguments[1], arguments[2]);
    server.set_tcp_nodelay(true);
    server.set_keep_alive_max_count(1'000'000);
    // Each kept connection holds a thread; those of one side idle while the other is measured.
    server.set_keep_alive_timeout(600);
    server.new_task_queue = [] { return new httplib::ThreadPool(24); };
    server.Get(".*", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(
            R"({"sessionId":"6f1c2a","pingInterval":60,"status":"SESSION_ACTIVE","timestamp":"2016-03-01T10:20:30.000Z",)"
            R"("user":{"age":30,"keywords":["racing","puzzles","cooking"]},"placements":["AppLaunch","LevelUp","StoreOpen"],)"
            R"("limits":{"impressions":12,"clicks":3,"window":86400},"note":"as small as the responses to a session request are"})",
            "application/vnd.response+json"); // a type that this server does not spend its time on
                                              // compressing
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    std::printf("%d\n", port);
    std::fflush(stdout);
    return server.listen_after_bind() ? 0 : 1;
}
