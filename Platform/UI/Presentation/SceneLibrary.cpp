#include "SceneLibrary.h"

#include "FontWarmUp.h"
#include "MainLoop.h"
#include "SceneObjects.h"
#include "SystemLog.h"
#include "UIRuntime.h"
#include "View.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>

#include <map>
#include <string>
#include <utility>
#include <vector>

// Written by the build; named here, it is kept in programs that link this library statically.
extern void qml_register_types_Virlo_UI();

namespace virlo
{

class SceneLibrary::State
{
public:
    State() { engine.addImportPath(QStringLiteral("qrc:/qt/qml")); }

    QQmlEngine engine;
    FontWarmUp fonts;
    std::map<QUrl, std::unique_ptr<QQmlComponent>> components;
    [[maybe_unused]] void (*volatile registration)() = &qml_register_types_Virlo_UI;
};

std::unique_ptr<SceneLibrary::State>& SceneLibrary::place()
{
    static std::unique_ptr<State> state;
    return state;
}

SceneLibrary::State& SceneLibrary::state()
{
    if (!place()) {
        UIRuntime::begin();
        place() = std::make_unique<State>();
    }
    return *place();
}

void SceneLibrary::clear()
{
    place().reset();
}

void SceneLibrary::warmUp(const QUrl& document, std::function<void()> done)
{
    auto& component = state().components[document];
    if (!component)
        component = std::make_unique<QQmlComponent>(&state().engine, document, QQmlComponent::Asynchronous);
    // Whichever is ready last, the fonts or the document, calls.
    const auto ready = [left = std::make_shared<int>(2), done = std::move(done)] {
        if (--*left == 0 && done)
            done();
    };
    state().fonts.start(ready);
    if (!component->isLoading()) {
        MainLoop::shared().post(ready);
        return;
    }
    auto once = std::make_shared<std::function<void()>>(ready);
    QObject::connect(component.get(), &QQmlComponent::statusChanged, component.get(),
                     [once](QQmlComponent::Status status) {
                         if (status != QQmlComponent::Loading && *once)
                             MainLoop::shared().post(std::exchange(*once, nullptr));
                     });
}

std::unique_ptr<View> SceneLibrary::load(SceneObjects& scene)
{
    auto& kept = state().components[scene.document];
    if (!kept)
        kept = std::make_unique<QQmlComponent>(&state().engine, scene.document,
                                               QQmlComponent::PreferSynchronous);
    // One that is still warming up goes on, for those who wait for it; the engine compiles a document once.
    std::unique_ptr<QQmlComponent> ahead;
    if (kept->isLoading())
        ahead = std::make_unique<QQmlComponent>(&state().engine, scene.document,
                                                QQmlComponent::PreferSynchronous);
    QQmlComponent* const component = ahead ? ahead.get() : kept.get();
    scene.context = std::make_unique<QQmlContext>(state().engine.rootContext());
    std::unique_ptr<QObject> object(component->isReady() ? component->create(scene.context.get()) : nullptr);
    if (auto* view = qobject_cast<View*>(object.get())) {
        (void)object.release();
        QQmlEngine::setObjectOwnership(view, QQmlEngine::CppOwnership);
        scene.root = view;
        return std::unique_ptr<View>(view);
    }
    const std::string reason =
        component->isError() ? component->errorString().trimmed().toStdString() : "its root is no View";
    systemLog("Cannot load the scene " + scene.document.toString().toStdString() + ": " + reason);
    return std::make_unique<View>();
}

} // namespace virlo
