// bare-carousel FOLDER COUNT: Qt Quick alone with a strip of the folder's images "bench-1.jpg" to COUNT below
// a few texts, of which it makes and decodes the five around the middle; the one in focus has a ring and a
// shadow. See BareScene.

#include "BareScene.h"

#include <QQmlContext>

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
        delegate: Item {
            id: element
            required property int index
            property bool isFocused: PathView.isCurrentItem
            width: 1400
            height: isFocused ? 618 : 515
            Behavior on height { NumberAnimation { duration: 1250 } }
            BorderImage {
                anchors { fill: parent; margins: -90 }
                border { left: 181; top: 181; right: 181; bottom: 181 }
                source: folder + "/shadow.png"
                visible: element.isFocused
            }
            Rectangle { anchors { fill: parent; margins: -10 } radius: 20; visible: element.isFocused }
            Rectangle { anchors { fill: parent; margins: -4 } radius: 14; color: "black"; visible: element.isFocused }
            Image {
                anchors.fill: parent
                source: folder + "/bench-" + (element.index + 1) + ".jpg"
                sourceSize.width: 1400
                asynchronous: true
                cache: false
                fillMode: Image.PreserveAspectCrop
            }
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
    drawShadow(QString::fromLocal8Bit(arguments[1]) + "/shadow.png", 183, 10, 90);
    QQmlEngine engine;
    engine.rootContext()->setContextProperty("folder", QUrl::fromLocalFile(arguments[1]).toString());
    engine.rootContext()->setContextProperty("imageCount", std::stoi(arguments[2]));
    engine.rootContext()->setContextProperty("story",
                                             QString("Forty lantern isles, one boat. ").repeated(12));
    return runBareScene(engine, scene);
}
