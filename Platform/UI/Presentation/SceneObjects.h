#pragma once

#include <QPointer>
#include <QUrl>

#include <memory>

class QQmlContext;

namespace virlo
{

class View;

/// What a view controller has of its QML document: the document, and once loaded the root's context. Main
/// thread, but for making.
struct SceneObjects {
    QUrl document;
    QPointer<View> root;
    std::unique_ptr<QQmlContext> context;

    SceneObjects();
    ~SceneObjects();
    SceneObjects(const SceneObjects&) = delete;
    SceneObjects& operator=(const SceneObjects&) = delete;
};

} // namespace virlo
