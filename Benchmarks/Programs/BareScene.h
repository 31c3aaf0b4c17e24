#pragma once

#include "SlideWatch.h"

#include <QGuiApplication>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QSocketNotifier>

#include <cstdio>
#include <iostream>
#include <string>

/// A soft shadow of a square with rounded corners, which reaches that far beyond it on each side.
inline void drawShadow(const QString& file, int square, int corner, int reach)
{
    QImage image(square + 2 * reach, square + 2 * reach, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 3));
    for (int by = reach; by > 0; by -= 2)
        painter.drawRoundedRect(QRectF(reach, reach, square, square).adjusted(-by, -by, by, by), corner + by,
                                corner + by);
    painter.end();
    image.save(file);
}

/// Shows the scene in a window of 1920×1080 with the focus on its last child, says "painted", and does what
/// standard input says until that ends: "slide SECONDS" and "scroll LINES", see SlideWatch.
inline int runBareScene(QQmlEngine& engine, const char* scene)
{
    QQuickWindow window;
    window.resize(1920, 1080);
    QQmlComponent component(&engine);
    component.setData(scene, QUrl());
    auto* const item = qobject_cast<QQuickItem*>(component.create());
    if (item == nullptr) {
        std::fprintf(stderr, "%s\n", qPrintable(component.errorString()));
        return 1;
    }
    item->setParentItem(window.contentItem());
    window.show();
    window.requestActivate();
    item->childItems().constLast()->forceActiveFocus();
    QTimer::singleShot(1500, [] {
        std::puts("painted");
        std::fflush(stdout);
    });

    SlideWatch watch(window);
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string command;
        if (!std::getline(std::cin, command))
            return QGuiApplication::quit();
        if (command.starts_with("slide "))
            watch.slide(std::stoi(command.substr(6)));
        else if (command.starts_with("scroll "))
            watch.scroll(std::stoi(command.substr(7)));
    });
    return QGuiApplication::exec();
}
