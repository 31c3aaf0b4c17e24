#pragma once

#include <QUrl>

#include <functional>
#include <memory>

class QQmlComponent;

namespace virlo
{

class View;
struct SceneObjects;

/// The QML engine of the library's own and the documents that it has compiled. Main thread.
class SceneLibrary
{
public:
    /// Has the document compiled and the fonts looked through, off the main thread; `done` comes in a later
    /// turn of the main loop, also on failure.
    static void warmUp(const QUrl& document, std::function<void()> done);
    /// Makes the objects of `scene.document` and notes them in `scene`; an empty view, with an error in the
    /// log, where the document cannot be loaded or its root is no View.
    [[nodiscard]] static std::unique_ptr<View> load(SceneObjects& scene);
    /// Ends the engine, with everything compiled.
    static void clear();

private:
    class State;
    static std::unique_ptr<State>& place();
    static State& state();
};

} // namespace virlo
