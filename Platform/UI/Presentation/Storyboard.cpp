#include "Storyboard.h"

#include "MainLoop.h"
#include "SceneLoader.h"
#include "SystemLog.h"
#include "ViewController.h"

#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace virlo
{

namespace
{

struct Scene {
    QUrl document;
    Storyboard::Maker maker;
};

struct Scenes {
    std::mutex mutex;
    std::map<std::string, std::map<std::string, Scene>> byStoryboard;
};

Scenes& scenes()
{
    static auto* const all = new Scenes;
    return *all;
}

std::optional<Scene> findScene(const std::string& storyboard, const std::string& identifier)
{
    {
        const std::lock_guard lock(scenes().mutex);
        const auto& known = scenes().byStoryboard[storyboard];
        if (const auto found = known.find(identifier); found != known.end())
            return found->second;
    }
    systemLog("The storyboard \"" + storyboard + "\" has no scene \"" + identifier + "\".");
    return std::nullopt;
}

} // namespace

Storyboard::Storyboard(std::string name) : m_name(std::move(name)) {}

void Storyboard::registerScene(const std::string& storyboard, const std::string& identifier,
                               const QUrl& document, Maker maker)
{
    const std::lock_guard lock(scenes().mutex);
    scenes().byStoryboard[storyboard][identifier] = {document, std::move(maker)};
}

std::shared_ptr<Storyboard> Storyboard::storyboardWithName(const std::string& name)
{
    const std::lock_guard lock(scenes().mutex);
    if (scenes().byStoryboard.count(name) == 0)
        return nullptr;
    return std::shared_ptr<Storyboard>(new Storyboard(name));
}

std::shared_ptr<ViewController>
Storyboard::instantiateViewControllerWithIdentifier(const std::string& identifier) const
{
    const auto scene = findScene(m_name, identifier);
    if (!scene)
        return nullptr;
    auto controller = scene->maker();
    if (controller)
        controller->m_scene.document = scene->document;
    return controller;
}

void Storyboard::warmUp(const std::string& identifier, std::function<void()> done) const
{
    const auto scene = findScene(m_name, identifier);
    MainLoop::performOnMain([document = scene ? scene->document : QUrl(), done = std::move(done)] {
        SceneLoader::warmUp(document, done);
    });
}

} // namespace virlo
