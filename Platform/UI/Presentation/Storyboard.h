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
/// thread.
///
/// Documents are compiled once for the process, by an engine that the library owns (the host may have none,
/// or its own); it is destroyed with the application.
class Storyboard
{
public:
    using Maker = std::function<std::shared_ptr<ViewController>()>;

    /// Makes a scene known; a second one of the same names replaces the first.
    static void registerScene(const std::string& storyboard, const std::string& identifier,
                              const QUrl& document, Maker maker);

    /// Null where no scene of that storyboard is known.
    [[nodiscard]] static std::shared_ptr<Storyboard> storyboardWithName(const std::string& name);

    /// A new controller of the scene, its view not yet loaded; null, with an error in the log, for an unknown
    /// identifier.
    [[nodiscard]] std::shared_ptr<ViewController>
    instantiateViewControllerWithIdentifier(const std::string& identifier) const;

    /// Compiles the scene's document and reads the device's fonts, off the main thread, so that loading its
    /// view later only creates the objects. `done`, if any, is called on the main thread when that has ended
    /// or failed, never on the caller's stack. Nothing is done twice.
    void warmUp(const std::string& identifier, std::function<void()> done = {}) const;

private:
    explicit Storyboard(std::string name);

    std::string m_name;
};

} // namespace virlo
