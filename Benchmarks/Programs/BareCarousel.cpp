// bare-carousel FOLDER COUNT: Qt Quick alone with a strip of the folder's images "bench-1.jpg" to COUNT below
// a few texts, of which it makes and decodes the five around the middle. Says "painted" once the first image
// is shown; reads "slide SECONDS" from standard input, see SlideWatch.

#include "SlideWatch.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QSocketNotifier>

#include <iostream>
#include <string>

namespace
{

constexpr auto scene = R"(
import QtQuick
Rectangle {
    width: 1920; height: 1080
    color: "#0d1018"
    Rectangle { x: 260; y: 60; width: 150; height: 150; radius: 30; color: "#803080" }
    Text { x: 444; y: 54; text: "Bench"; color: "white"; font { pixelSize: 54; bold: true } }
    Text { x: 444; y: 122; text: "Free | Get"; color: "#c3cbd9"; font.pixelSize: 32 }
    Text { x: 260; y: 236; width: 1400; text: story; color: "white"; font.pixelSize: 30; wrapMode: Text.Wrap }
    PathView {
        focus: true
        Keys.onRightPressed: incrementCurrentIndex()
        y: 404; width: 1920; height: 651
        model: imageCount
        pathItemCount: 5
        cacheItemCount: 0
        path: Path {
            startX: 960 - 2.5 * 1440; startY: 325
            PathLine { x: 960 + 2.5 * 1440; y: 325 }
        }
        preferredHighlightBegin: 0.5
        preferredHighlightEnd: 0.5
        highlightRangeMode: PathView.StrictlyEnforceRange
        highlightMoveDuration: 1250
        delegate: Image {
            required property int index
            width: 1400
            height: PathView.isCurrentItem ? 618 : 515
            Behavior on height { NumberAnimation { duration: 1250 } }
            source: folder + "/bench-" + (index + 1) + ".jpg"
            sourceSize.width: 1400
            asynchronous: true
            cache: false
            fillMode: Image.PreserveAspectCrop
        }
    }
}
)";

} // namespace

int main(int count, char** arguments)
{
    if (count != 3)
        return 2;
    QGuiApplication application(count, arguments);
    QQuickWindow window;
    window.resize(1920, 1080);
    QQmlEngine engine;
    engine.rootContext()->setContextProperty("folder", QUrl::fromLocalFile(arguments[1]).toString());
    engine.rootContext()->setContextProperty("imageCount", std::stoi(arguments[2]));
    engine.rootContext()->setContextProperty("story",
                                             QString("Forty lantern isles, one boat. ").repeated(12));
    QQmlComponent component(&engine);
    component.setData(scene, QUrl());
    auto* const item = qobject_cast<QQuickItem*>(component.create());
    if (item == nullptr)
        return 1;
    item->setParentItem(window.contentItem());
    window.show();
    window.requestActivate();
    item->childItems().constLast()->forceActiveFocus();
    QTimer::singleShot(1500, [] {
        std::puts("painted");
        std::fflush(stdout);
    });

    SlideWatch slide(window);
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string command;
        if (!std::getline(std::cin, command))
            return QGuiApplication::quit();
        if (command.starts_with("slide "))
            slide.slide(std::stoi(command.substr(6)));
    });
    return QGuiApplication::exec();
}
