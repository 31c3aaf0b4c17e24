#pragma once

#include <QPointer>
#include <QUrl>

#include <memory>

class QQmlContext;

namespace virlo
{

class View;

/// A view controller's QML document and, once loaded, its root and context. Main thread, except for its
/// construction.
struct SceneInstance {
    QUrl document;
    QPointer<View> root;
    std::unique_ptr<QQmlContext> context;
    bool failed = false; ///< it could not be loaded, or an outlet is missing

    SceneInstance();
    ~SceneInstance();
    SceneInstance(const SceneInstance&) = delete;
    SceneInstance& operator=(const SceneInstance&) = delete;
};

} // namespace virlo
