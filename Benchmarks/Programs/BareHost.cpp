// bare-host URL AUTHORITY: Qt Quick and libcurl with nothing of the library: fetches the image while the
// window is made, shows it with one text over it, says "painted" at the first frame of both and stays.

#include <curl/curl.h>

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickItem>
#include <QQuickWindow>

#include <cstdio>
#include <future>
#include <string>

namespace
{

constexpr auto scene = R"(
import QtQuick
Image {
    width: 1920; height: 1080
    source: "image://bare/ad"
    Text { x: 1200; y: 800; text: "Look"; color: "white"; font.pixelSize: 40 }
}
)";

std::string fetch(const char* url, const char* authority)
{
    std::string body;
    CURL* const handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_URL, url);
    curl_easy_setopt(handle, CURLOPT_CAINFO, authority);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    curl_easy_setopt(
        handle, CURLOPT_WRITEFUNCTION, +[](char* data, std::size_t size, std::size_t count, void* into) {
            static_cast<std::string*>(into)->append(data, size * count);
            return size * count;
        });
    const bool arrived = curl_easy_perform(handle) == CURLE_OK;
    curl_easy_cleanup(handle);
    return arrived ? body : std::string();
}

class Provider : public QQuickImageProvider
{
public:
    explicit Provider(QImage image) : QQuickImageProvider(Image), m_image(std::move(image)) {}

    QImage requestImage(const QString&, QSize* size, const QSize&) override
    {
        *size = m_image.size();
        return m_image;
    }

private:
    QImage m_image;
};

} // namespace

int main(int count, char** arguments)
{
    if (count != 3)
        return 2;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    auto fetched = std::async(std::launch::async, [&] {
        const std::string bytes = fetch(arguments[1], arguments[2]);
        return QImage::fromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size()));
    });
    QGuiApplication application(count, arguments);
    QQuickWindow window;
    window.resize(1920, 1080);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(scene, QUrl());
    QImage image = fetched.get();
    if (image.isNull())
        return 1;
    engine.addImageProvider("bare", new Provider(std::move(image)));
    auto* const item = qobject_cast<QQuickItem*>(component.create());
    if (item == nullptr)
        return 1;
    item->setParentItem(window.contentItem());
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [painted = false]() mutable {
        if (!painted) {
            std::puts("painted");
            std::fflush(stdout);
        }
        painted = true;
    });
    window.show();
    return QGuiApplication::exec();
}
