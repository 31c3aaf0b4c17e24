#include "ViewController.h"

#include "MainLoop.h"
#include "SceneLoader.h"
#include "SystemLog.h"
#include "UIRuntime.h"
#include "WindowPresentation.h"

#include <QMetaProperty>
#include <QQmlContext>

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

/// Those with a loaded view. Main thread.
std::vector<ViewController*>& loaded()
{
    static std::vector<ViewController*> list;
    return list;
}

} // namespace

ViewController::ViewController() = default;

ViewController::~ViewController()
{
    for (const auto& child : m_children)
        child->m_parent = nullptr;
    if (m_view) {
        m_view->m_viewController = nullptr;
        loaded().erase(std::find(loaded().begin(), loaded().end(), this));
    }
}

void ViewController::destroyLater(ViewController* controller)
{
    MainLoop::shared().post([controller] { delete controller; });
}

// The view

View& ViewController::view()
{
    loadViewIfNeeded();
    return *m_view;
}

void ViewController::loadViewIfNeeded()
{
    if (m_view)
        return;
    UIRuntime::begin();
    m_view = loadView();
    m_scene.failed = m_view == nullptr;
    if (!m_view)
        m_view = std::make_unique<View>();
    m_view->m_viewController = this;
    loaded().push_back(this);
    if (!m_scene.failed)
        viewDidLoad();
}

void ViewController::prepareView(std::function<void()> done)
{
    MainLoop::shared().post([weak = weak_from_this(), done = std::move(done)] {
        const auto self = weak.lock();
        SceneLoader::warmUp(self ? self->m_scene.document : QUrl(), [weak, done] {
            if (const auto prepared = weak.lock())
                prepared->loadViewIfNeeded();
            done();
        });
    });
}

std::unique_ptr<View> ViewController::loadView()
{
    return m_scene.document.isEmpty() ? std::make_unique<View>() : SceneLoader::load(m_scene);
}

void ViewController::unloadViews()
{
    for (ViewController* controller : std::exchange(loaded(), {})) {
        controller->m_view->m_viewController = nullptr;
        controller->m_view.reset();
        controller->m_scene.context.reset();
    }
}

QObject* ViewController::outletObject(const char* name, const QMetaObject& type)
{
    if (!m_scene.root)
        return nullptr;
    auto* const object = m_scene.root->property(name).value<QObject*>();
    if (object != nullptr && type.cast(object) != nullptr)
        return object;
    if (!std::exchange(m_scene.failed, true))
        systemLog("The scene " + m_scene.document.fileName().toStdString() + " has no outlet \"" + name +
                  "\" that is a " + type.className() + ".");
    return nullptr;
}

// Containment

const std::vector<std::shared_ptr<ViewController>>& ViewController::childViewControllers() const noexcept
{
    return m_children;
}

void ViewController::addChildViewController(const std::shared_ptr<ViewController>& child)
{
    if (!child || child->m_parent == this)
        return;
    for (const ViewController* ancestor = this; ancestor != nullptr; ancestor = ancestor->m_parent) {
        if (ancestor == child.get()) {
            systemLog("A view controller cannot be its own child.");
            return;
        }
    }
    child->removeFromParentViewController();
    child->m_parent = this;
    m_children.push_back(child);
    child->viewDidMove();
}

void ViewController::removeFromParentViewController()
{
    if (m_parent == nullptr)
        return;
    const auto self = shared_from_this();
    if (m_view)
        m_view->removeFromSuperview();
    auto& siblings = m_parent->m_children;
    m_parent = nullptr;
    siblings.erase(std::find(siblings.begin(), siblings.end(), self));
}

std::shared_ptr<WindowPresentation> ViewController::presentation() const
{
    return m_parent != nullptr ? m_parent->presentation() : m_presentation.lock();
}

void ViewController::presentViewController(const std::shared_ptr<ViewController>& controller)
{
    if (const auto current = presentation())
        current->push(controller);
    else
        systemLog("Cannot present above a screen that is not shown.");
}

void ViewController::dismissViewController()
{
    const ViewController* root = this;
    while (root->m_parent != nullptr)
        root = root->m_parent;
    const auto current = presentation();
    if (current && !current->pop(*root))
        current->dismiss();
}

View* ViewController::preferredFocusedView()
{
    return m_view.get();
}

FocusEnvironment* ViewController::parentFocusEnvironment()
{
    if (m_view && m_view->superview() != nullptr)
        return m_view->superview();
    return m_parent;
}

Responder* ViewController::nextResponder() const
{
    return m_view ? m_view->superview() : nullptr;
}

// Appearing

bool ViewController::isOnScreen() const
{
    return m_appearance == Appearance::Appearing || m_appearance == Appearance::Appeared;
}

void ViewController::viewDidMove()
{
    if (m_parent == nullptr || !m_view)
        return;
    const bool shown = m_parent->isOnScreen() && m_view->isDescendantOf(m_parent->view());
    if (shown == isOnScreen())
        return;
    const auto self = shared_from_this();
    if (shown) {
        beginAppearing();
        if (m_parent != nullptr && m_parent->m_appearance == Appearance::Appeared)
            endAppearing();
    } else {
        beginDisappearing();
        endDisappearing();
    }
}

void ViewController::beginAppearing()
{
    if (isOnScreen())
        return;
    m_appearance = Appearance::Appearing;
    viewWillAppear();
    for (const auto& child : std::vector(m_children))
        child->viewDidMove();
}

void ViewController::endAppearing()
{
    if (m_appearance != Appearance::Appearing)
        return;
    m_appearance = Appearance::Appeared;
    viewDidAppear();
    for (const auto& child : std::vector(m_children))
        child->endAppearing();
}

void ViewController::beginDisappearing()
{
    if (!isOnScreen())
        return;
    m_appearance = Appearance::Disappearing;
    viewWillDisappear();
    for (const auto& child : std::vector(m_children))
        child->beginDisappearing();
}

void ViewController::endDisappearing()
{
    if (m_appearance != Appearance::Disappearing)
        return;
    m_appearance = Appearance::Gone;
    viewDidDisappear();
    for (const auto& child : std::vector(m_children))
        child->endDisappearing();
}

} // namespace virlo
