#include "WindowPresentation.h"

#include "MainLoop.h"
#include "PresentationStage.h"
#include "SystemLog.h"
#include "UIRuntime.h"
#include "ViewController.h"

#include <QPointer>
#include <QQuickWindow>

#include <algorithm>
#include <utility>
#include <vector>

namespace virlo
{

namespace
{

/// Keeps presentations alive. Main thread. Never destroyed: a host that calls exit() with an ad on its screen
/// would have its items destroyed after Qt's own statics.
std::vector<std::shared_ptr<WindowPresentation>>& presented()
{
    static auto* const list = new std::vector<std::shared_ptr<WindowPresentation>>;
    return *list;
}

bool holdsPresentation(const QQuickWindow& window)
{
    const auto items = window.contentItem()->childItems();
    return std::any_of(items.begin(), items.end(),
                       [](QQuickItem* item) { return qobject_cast<PresentationStage*>(item) != nullptr; });
}

} // namespace

WindowPresentation::WindowPresentation(Handlers handlers) : m_handlers(std::move(handlers)) {}

WindowPresentation::~WindowPresentation() = default;

std::shared_ptr<WindowPresentation> WindowPresentation::present(std::shared_ptr<ViewController> controller,
                                                                QQuickWindow* window, Handlers handlers)
{
    // Callers on other threads may release it at once; it must be destroyed on the main thread.
    std::shared_ptr<WindowPresentation> presentation(
        new WindowPresentation(std::move(handlers)),
        [](WindowPresentation* one) { MainLoop::performOnMain([one] { delete one; }); });
    MainLoop::performOnMain(
        [presentation, controller = std::move(controller), window = QPointer<QQuickWindow>(window)] {
            presentation->start(controller, window);
        });
    return presentation;
}

void WindowPresentation::start(std::shared_ptr<ViewController> controller, QQuickWindow* window)
{
    if (m_ended)
        return;
    const bool taken =
        controller && (controller->presentation() || controller->parentViewController() != nullptr);
    if (!controller || window == nullptr || taken || holdsPresentation(*window)) {
        systemLog(!controller || window == nullptr ? "Cannot present: there is no screen or no window."
                  : taken                          ? "Cannot present: the screen is shown already."
                          : "Cannot present: another screen is shown over the window.");
        end(End::Refused);
        return;
    }
    UIRuntime::begin();
    controller->loadViewIfNeeded();
    if (controller->sceneHasFailed()) {
        end(End::Refused);
        return;
    }
    const auto self = shared_from_this();
    presented().push_back(self);
    m_controller = std::move(controller);
    m_controller->m_presentation = self;
    m_stage = std::make_unique<PresentationStage>(*window, *m_controller, [this] { didShowFirstFrame(); });
    QObject::connect(window, &QObject::destroyed, m_stage.get(), [this] { end(End::WindowGone); });
    m_stage->enter();
    m_controller->beginAppearing();
    if (m_stage)
        m_stage->startFocus();
}

void WindowPresentation::push(const std::shared_ptr<ViewController>& controller)
{
    const bool free = controller && !controller->presentation() && !controller->parentViewController();
    if (!m_stage || !free) {
        systemLog("Cannot present above a screen: one of the two is gone, or is shown already.");
        return;
    }
    controller->loadViewIfNeeded();
    if (controller->sceneHasFailed())
        return;
    const auto self = shared_from_this();
    m_above.push_back(controller);
    controller->m_presentation = self;
    m_stage->push(*controller);
    controller->beginAppearing();
    if (m_stage)
        m_stage->startFocus();
    controller->endAppearing();
}

bool WindowPresentation::pop(const ViewController& controller)
{
    const auto first = std::find_if(m_above.begin(), m_above.end(),
                                    [&](const auto& one) { return one.get() == &controller; });
    if (first == m_above.end())
        return false;
    const auto self = shared_from_this();
    for (auto left = m_above.end() - first; left > 0 && !m_above.empty(); --left) {
        const auto highest = m_above.back();
        m_above.pop_back();
        highest->beginDisappearing();
        if (m_stage)
            m_stage->pop();
        highest->m_presentation.reset();
        highest->endDisappearing();
    }
    return true;
}

void WindowPresentation::didShowFirstFrame()
{
    const auto self = shared_from_this();
    m_controller->endAppearing();
    if (!m_ended && m_handlers.didPresent)
        m_handlers.didPresent();
}

void WindowPresentation::dismiss()
{
    MainLoop::performOnMain([self = shared_from_this()] { self->end(End::Dismissed); });
}

bool WindowPresentation::isPresented() const
{
    return m_stage != nullptr;
}

void WindowPresentation::end(End reason)
{
    if (std::exchange(m_ended, true))
        return;
    const auto self = shared_from_this();
    if (!m_above.empty())
        pop(*m_above.front());
    const auto controller = std::exchange(m_controller, nullptr);
    std::shared_ptr<PresentationStage> stage = std::move(m_stage);
    if (stage) {
        controller->beginDisappearing();
        stage->leave();
        controller->endDisappearing();
        controller->m_presentation.reset();
        presented().erase(std::find(presented().begin(), presented().end(), self));
    }
    // The stage may be handling the key event that led here, and the handlers must not run on the caller's
    // stack.
    MainLoop::shared().post([stage = std::move(stage), handlers = std::exchange(m_handlers, {}), reason] {
        if (handlers.didEnd)
            handlers.didEnd(reason);
    });
}

void WindowPresentation::endAll()
{
    while (!presented().empty()) {
        const auto last = presented().back();
        last->end(End::WindowGone);
    }
}

} // namespace virlo
