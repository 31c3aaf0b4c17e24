// bench-vast-server: a chain of five wrappers ("/5.xml" to "/1.xml", then the ad at "/0.xml", of 1 to 6 KB),
// and "/ping", whose response is empty and which is counted at "/pings". Prints its port.

#include <httplib.h>

#include <atomic>
#include <cstdio>
#include <string>

namespace
{

std::string impressions(int document, int count)
{
    std::string text;
    for (int each = 0; each < count; ++each)
        text += "<Impression><![CDATA[https://track.example/impression/" + std::to_string(document) + "/" +
                std::to_string(each) +
                "?session=6f1c2a90b7&placement=level-up&cb=[CACHEBUSTING]]]></Impression>\n";
    return text;
}

std::string document(int number, int port)
{
    const std::string head =
        "<?xml version=\"1.0\"?>\n<VAST version=\"3.0\"><Ad id=\"" + std::to_string(number) + "\">";
    const std::string addresses = impressions(number, 6 + number * 7);
    if (number == 0)
        return head + "<InLine>" + addresses + "</InLine></Ad></VAST>";
    return head + "<Wrapper><VASTAdTagURI><![CDATA[http://127.0.0.1:" + std::to_string(port) + "/" +
           std::to_string(number - 1) + ".xml]]></VASTAdTagURI>" + addresses + "</Wrapper></Ad></VAST>";
}

} // namespace

int main()
{
    httplib::Server server;
    server.new_task_queue = [] { return new httplib::ThreadPool(64); }; // one for each kept connection
    server.set_tcp_nodelay(true);
    server.set_keep_alive_max_count(100'000'000);
    server.set_keep_alive_timeout(600);
    std::string documents[6];
    std::atomic<long> pings{0};
    server.Get(R"(/([0-5])\.xml)", [&](const httplib::Request& request, httplib::Response& response) {
        response.set_content(
            documents[request.matches[1].str()[0] - '0'],
            "application/vnd.vast+xml"); // a type that this server does not spend its time on compressing
    });
    server.Get("/ping", [&](const httplib::Request&, httplib::Response& response) {
        ++pings;
        response.status = 204;
    });
    server.Get("/pings", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(std::to_string(pings), "text/plain");
    });
    const int port = server.bind_to_any_port("127.0.0.1");
    for (int number = 0; number < 6; ++number)
        documents[number] = document(number, port);
    std::printf("%d\n", port);
    std::fflush(stdout);
    return server.listen_after_bind() ? 0 : 1;
}
