#pragma once

#include <QUrl>

#include <functional>
#include <memory>

namespace virlo
{

class View;
struct SceneInstance;

/// The library's own QML engine and the documents that it has compiled. Main thread.
class SceneLoader
{
public:
    /// Compiles the document, if it is not empty, and reads the device's fonts, both off the main thread.
    /// `done` comes in a later turn of the main loop, also on failure.
    static void warmUp(const QUrl& document, std::function<void()> done);
    /// Creates the objects of `scene.document` and notes them in `scene`. Null, with a line in the log, where
    /// the document cannot be loaded or its root is no View.
    [[nodiscard]] static std::unique_ptr<View> load(SceneInstance& scene);
    /// Destroys the engine, with everything compiled.
    static void clear();

private:
    class State;
    static std::unique_ptr<State>& storage();
    static State& state();
};

} // namespace virlo
