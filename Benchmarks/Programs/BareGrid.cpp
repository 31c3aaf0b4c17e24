// bare-grid AUTHORITY COUNT URL…: Qt Quick alone with a GridView of COUNT cells like an app grid's: a card
// with four texts, a button, a shadow and one of the images, fetched for each cell. See BareScene.

#include "BareScene.h"

#include <QQmlContext>
#include <QSslConfiguration>
#include <QTemporaryDir>

namespace
{

constexpr auto scene = R"(
import QtQuick
Rectangle {
    width: 1920; height: 1080
    color: "#dde6e8"
    Rectangle { x: 60; y: 44; width: 1800; height: 436; color: "#f2f6f6" }
    GridView {
        id: grid
        y: 480; width: 1920; height: 600
        leftMargin: 60; topMargin: 52; bottomMargin: 60
        cellWidth: 450; cellHeight: 398
        clip: true
        focus: true
        interactive: false
        keyNavigationEnabled: true
        reuseItems: true
        model: itemCount
        preferredHighlightBegin: 52; preferredHighlightEnd: 450
        highlightRangeMode: GridView.ApplyRange
        highlightMoveDuration: 150
        delegate: Item {
            id: cell
            required property int index
            property bool focused: GridView.isCurrentItem
            property real inset: focused ? 0 : 10
            Behavior on inset { NumberAnimation { duration: 250 } }
            width: 443; height: 398
            Rectangle { anchors.fill: parent; anchors.margins: -6; radius: 24; color: "#0b3d91"; visible: cell.focused }
            Rectangle { anchors.fill: parent; anchors.margins: cell.inset; radius: 18; color: "white" }
            Text { x: 20 + 2 * cell.inset; y: 22 + 2 * cell.inset; width: 216; elide: Text.ElideRight
                   text: "Bench " + cell.index; font { pixelSize: 34; bold: true } }
            Text { x: 20 + 2 * cell.inset; y: 80 + cell.inset; width: 216; elide: Text.ElideRight
                   text: "Free | Get"; font.pixelSize: 28; color: "#3c4f5a" }
            Text { x: 20 + 2 * cell.inset; y: 122 + cell.inset; width: cell.focused ? 398 : 363; height: 148
                   text: "Forty lantern isles, one boat, and a night that does not end."
                   wrapMode: Text.Wrap; elide: Text.ElideRight; font.pixelSize: 28; color: "#26363f" }
            Image { x: 220; y: -24; source: shadow }
            Image {
                x: 270; y: 26; width: 150; height: 150
                scale: cell.focused ? 1.15 : 1
                Behavior on scale { NumberAnimation { duration: 250 } }
                source: images[cell.index % images.length] + "?" + cell.index
                sourceSize: Qt.size(150, 150)
                asynchronous: true
                cache: false
            }
            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: 322 - 2 * cell.inset + 10; width: 398 - 1.75 * 2 * cell.inset; height: 58 - cell.inset / 2
                radius: 10; color: "#1660c8"
                Text { anchors.centerIn: parent; text: "Get"; color: "white"; font { pixelSize: 30; bold: true } }
            }
        }
    }
}
)";

} // namespace

int main(int count, char** arguments)
{
    if (count < 4)
        return 2;
    QGuiApplication application(count, arguments);
    QSslConfiguration trust = QSslConfiguration::defaultConfiguration();
    trust.setCaCertificates(QSslCertificate::fromPath(QString::fromLocal8Bit(arguments[1])));
    QSslConfiguration::setDefaultConfiguration(trust);
    const QTemporaryDir folder;
    const QString shadow = folder.filePath("shadow.png");
    drawShadow(shadow, 150, 20, 60);
    QQmlEngine engine;
    engine.rootContext()->setContextProperty("images", application.arguments().mid(3));
    engine.rootContext()->setContextProperty("shadow", QUrl::fromLocalFile(shadow));
    engine.rootContext()->setContextProperty("itemCount", std::stoi(arguments[2]));
    return runBareScene(engine, scene);
}
