#include "LiveServer.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QMetaEnum>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace
{

constexpr int quality = 82;
constexpr std::size_t mostConnections = 16;
constexpr const char* nextFrame = "--frame\r\nContent-Type: image/jpeg\r\n\r\n";

int widthOf(const httplib::Request& request)
{
    const auto asked = QString::fromStdString(request.get_param_value("width")).toInt();
    return std::clamp(asked > 0 ? asked : 1280, 64, 3840);
}

QByteArray jpeg(const QImage& image, int width)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const auto scaled = width < image.width() ? image.scaledToWidth(width, Qt::SmoothTransformation) : image;
    scaled.convertToFormat(QImage::Format_RGB32).save(&buffer, "JPG", quality);
    return bytes;
}

/// 0 where there is no such key.
int keyOf(const QString& name)
{
    const auto keys = QMetaEnum::fromType<Qt::Key>();
    const int code = keys.keyToValue(("Key_" + name.toUtf8()).constData());
    return std::max(code, 0);
}

} // namespace

LiveServer::LiveServer(FrameStore& frames, EventStream& events, Host host)
    : m_frames(frames)
    , m_events(events)
    , m_host(std::move(host))
{
    m_server.new_task_queue = [] { return new httplib::ThreadPool(mostConnections); };
    m_server.set_tcp_nodelay(true);
    // Two views must not share a port: the page would meet either.
    m_server.set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    m_server.set_payload_max_length(65536);
    // The end of the host waits for no client.
    m_server.set_keep_alive_max_count(1);
    m_server.set_write_timeout(std::chrono::seconds(1));
    m_server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        if (isAdmitted(request, response))
            return httplib::Server::HandlerResponse::Unhandled;
        response.status = 403;
        return httplib::Server::HandlerResponse::Handled;
    });
    m_server.Get("/live", [this](const auto& request, auto& response) { sendFrames(request, response); });
    m_server.Get("/frame", [this](const auto& request, auto& response) {
        const auto frame = m_frames.next(0);
        response.status = frame ? 200 : 503;
        if (frame)
            response.set_content(jpeg(frame->image, widthOf(request)).toStdString(), "image/jpeg");
    });
    m_server.Get("/events", [this](const auto&, auto& response) { sendEvents(response); });
    m_server.Post("/key", [this](const auto& request, auto& response) { takeKey(request, response); });
    m_server.Post("/ask", [this](const auto& request, auto& response) {
        const auto placement = QJsonDocument::fromJson(QByteArray::fromStdString(request.body))["placement"];
        response.status = placement.isString() && m_host.ask(placement.toString()) ? 204 : 404;
    });
}

LiveServer::~LiveServer()
{
    if (!m_thread.joinable())
        return;
    m_server.stop();
    m_thread.join();
}

bool LiveServer::start(std::uint16_t port, std::uint16_t page)
{
    if (!m_server.bind_to_port("127.0.0.1", port))
        return false;
    m_ownHost = "127.0.0.1:" + std::to_string(port);
    m_page = "http://127.0.0.1:" + std::to_string(page);
    m_thread = std::thread([this] { m_server.listen_after_bind(); });
    // A stop before it runs would be lost.
    while (!m_server.is_running())
        std::this_thread::yield();
    return true;
}

bool LiveServer::isAdmitted(const httplib::Request& request, httplib::Response& response) const
{
    const auto origin = request.get_header_value("Origin");
    // An image asked for by another site's page carries no origin, but browsers say this of it.
    const bool isForeign = request.get_header_value("Sec-Fetch-Site") == "cross-site";
    response.set_header("Access-Control-Allow-Origin", m_page);
    response.set_header("Cache-Control", "no-store");
    if (request.get_header_value("Host") != m_ownHost || isForeign)
        return false;
    return origin == m_page || (origin.empty() && request.method == "GET");
}

void LiveServer::sendFrames(const httplib::Request& request, httplib::Response& response)
{
    auto last = std::make_shared<std::uint64_t>(0);
    response.set_content_provider(
        "multipart/x-mixed-replace; boundary=frame",
        [this, last, width = widthOf(request)](std::size_t offset, httplib::DataSink& sink) {
            const auto frame = m_frames.next(*last);
            if (m_frames.isClosed())
                return false;
            // Browsers show a frame when the next one's boundary has come: it goes out behind each.
            QByteArray part = offset == 0 ? nextFrame : "";
            if (frame) {
                *last = frame->number;
                part += jpeg(frame->image, width) + "\r\n" + nextFrame;
            }
            return part.isEmpty() || sink.write(part.constData(), static_cast<std::size_t>(part.size()));
        });
}

void LiveServer::sendEvents(httplib::Response& response)
{
    auto last = std::make_shared<std::uint64_t>(0);
    response.set_content_provider("text/event-stream", [this, last](std::size_t, httplib::DataSink& sink) {
        const auto events = m_events.next(*last);
        return !events.isEmpty() && sink.write(events.constData(), static_cast<std::size_t>(events.size()));
    });
}

void LiveServer::takeKey(const httplib::Request& request, httplib::Response& response) const
{
    const auto asked = QJsonDocument::fromJson(QByteArray::fromStdString(request.body));
    const int code = keyOf(asked["key"].toString());
    if (code == 0) {
        response.status = 400;
        return;
    }
    const auto down = asked["down"];
    m_host.press({code, down.toBool(true), !down.toBool(false), asked["repeat"].toBool()});
    response.status = 204;
}
