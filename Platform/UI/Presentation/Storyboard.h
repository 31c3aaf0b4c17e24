#pragma once

#include <QUrl>

#include <functional>
#include <memory>
#include <string>

namespace virlo
{

class ViewController;

/// Scenes by identifier. A scene is a view controller class and a QML document; the document's root is a View
/// (of `import Virlo.UI`) whose properties are the controller's outlets (`ViewController::outlet`). Any
/// thread, but for `warmUp`'s work, which happens on the main thread.
///
/// Documents are compiled once for the process, by an engine that the library owns (the host may have none,
/// or its own); it ends with the application.
class Storyboard
{
public:
    using Maker = std::function<std::shared_ptr<ViewController>()>;

    /// Makes a scene known, usually from a static initialiser; a second one of the same names takes the
    /// first's place.
    static void registerScene(const std::string& storyboard, const std::string& identifier,
                              const QUrl& document, Maker maker);

    /// Null where no scene of that storyboard is known.
    [[nodiscard]] static std::shared_ptr<Storyboard> storyboardWithName(const std::string& name);

    /// A new controller of the scene, its view not yet loaded; null, with an error in the log, for an unknown
    /// identifier.
    [[nodiscard]] std::shared_ptr<ViewController>
    instantiateViewControllerWithIdentifier(const std::string& identifier) const;

    /// Has the scene's document compiled and the device's fonts looked through, off the main thread, so that
    /// loading its view later only makes the objects. `done`, if any, is called on the main thread once that
    /// is so, or has failed, never on the caller's stack. Any thread; nothing is done twice.
    void warmUp(const std::string& identifier, std::function<void()> done = {}) const;

private:
    explicit Storyboard(std::string name);

    std::string m_name;
};

} // namespace virlo
