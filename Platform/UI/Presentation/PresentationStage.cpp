#include "PresentationStage.h"

#include "FocusEngine.h"
#include "MainScreen.h"
#include "PaintedView.h"
#include "RemoteKeys.h"
#include "ViewController.h"
#include "WindowPresentation.h"

#include <QKeyEvent>
#include <QQuickWindow>
#include <QSGRectangleNode>

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

constexpr double aboveEverything = 1e9;

/// The item that has the focus in the window, or would have it were the window active.
QQuickItem* focusItem(const QQuickWindow& window)
{
    QQuickItem* item = window.contentItem();
    while (item->isFocusScope() && item->scopedFocusItem() != nullptr)
        item = item->scopedFocusItem();
    return item == window.contentItem() ? nullptr : item;
}

FocusHeading headingOf(PressType type)
{
    switch (type) {
    case PressType::UpArrow:
        return FocusHeading::Up;
    case PressType::DownArrow:
        return FocusHeading::Down;
    case PressType::LeftArrow:
        return FocusHeading::Left;
    case PressType::RightArrow:
        return FocusHeading::Right;
    default:
        return FocusHeading::None;
    }
}

void redrawPaintedViews(const QQuickItem& item)
{
    const auto children = item.childItems();
    for (QQuickItem* child : children) {
        if (auto* painted = qobject_cast<PaintedView*>(child))
            painted->setNeedsDisplay();
        redrawPaintedViews(*child);
    }
}

} // namespace

PresentationStage::PresentationStage(QQuickWindow& window, ViewController& controller,
                                     std::function<void()> didShowFirstFrame)
    : m_window(&window)
    , m_controller(controller)
    , m_didShowFirstFrame(std::move(didShowFirstFrame))
    , m_canvas(new QQuickItem(this))
{
    setFlag(ItemHasContents);
    setFlag(ItemIsFocusScope);
    setZ(aboveEverything);
    m_canvas->setTransformOrigin(TopLeft);
    m_canvas->setSize(QSizeF(WindowPresentation::canvasWidth, WindowPresentation::canvasHeight));
}

PresentationStage::~PresentationStage()
{
    leave();
}

void PresentationStage::enter()
{
    m_isEntered = true;
    m_hostFocus = focusItem(*m_window);
    if (QQuickItem* grabber = m_window->mouseGrabberItem())
        grabber->ungrabMouse();

    push(m_controller);

    QQuickItem* const content = m_window->contentItem();
    setParentItem(content);
    const auto fill = [this, content] { setSize(content->size()); };
    connect(content, &QQuickItem::widthChanged, this, fill);
    connect(content, &QQuickItem::heightChanged, this, fill);
    fill();
    layOutCanvas();

    m_window->installEventFilter(this);
    connect(m_window, &QQuickWindow::activeFocusItemChanged, this, &PresentationStage::noteActiveFocus);
    // Emitted on the render thread where there is one.
    m_swapped = connect(m_window, &QQuickWindow::frameSwapped, this, &PresentationStage::frameSwapped,
                        Qt::DirectConnection);
    forceActiveFocus(Qt::OtherFocusReason);
    update();
}

void PresentationStage::push(ViewController& controller)
{
    if (!m_layers.empty())
        m_layers.back().presses->cancelAll();
    View& view = controller.view();
    view.setParentItem(m_canvas);
    view.setPosition({0, 0});
    view.setSize(m_canvas->size());
    m_layers.push_back({controller, std::make_shared<PressDispatcher>(view), nullptr});
}

void PresentationStage::removeHighest()
{
    Layer layer = std::move(m_layers.back());
    m_layers.pop_back();
    layer.focus.reset();
    layer.presses->cancelAll();
    if (layer.controller.isViewLoaded() && layer.controller.view().parentItem() == m_canvas)
        layer.controller.view().setParentItem(nullptr);
}

void PresentationStage::pop()
{
    if (m_layers.size() < 2)
        return;
    removeHighest();
    const auto& engine = m_layers.back().focus;
    if (!engine)
        return;
    engine->validate();
    if (View* const focused = engine->focusedView())
        focused->forceActiveFocus(Qt::OtherFocusReason);
}

void PresentationStage::startFocus()
{
    if (m_layers.empty() || m_layers.back().focus)
        return;
    Layer& layer = m_layers.back();
    // A press that is held while the focus moves must not fire the button that lost it.
    layer.focus = std::make_unique<FocusEngine>(layer.controller, layer.controller.view(),
                                                [presses = layer.presses] { presses->cancelDelivered(); });
    layer.focus->validate();
}

void PresentationStage::leave()
{
    if (!std::exchange(m_isEntered, false))
        return;
    disconnect(m_swapped);
    while (!m_layers.empty())
        removeHighest();
    if (!m_window)
        return;
    m_window->removeEventFilter(this);
    disconnect(m_window, nullptr, this, nullptr);
    disconnect(m_window->contentItem(), nullptr, this, nullptr);
    const bool hadFocus = hasFocus();
    setParentItem(nullptr);
    if (hadFocus && m_hostFocus && m_hostFocus->window() == m_window && m_hostFocus->isVisible())
        m_hostFocus->forceActiveFocus(Qt::OtherFocusReason);
}

// Input

bool PresentationStage::isTypingText(const QKeyEvent& event) const
{
    const QQuickItem* item = m_window ? m_window->activeFocusItem() : nullptr;
    if (item == nullptr || !item->flags().testFlag(ItemAcceptsInputMethod) || m_layers.empty() ||
        !m_layers.back().controller.view().isAncestorOf(item))
        return false;
    // With nothing left to delete, Backspace is the remote's Menu: a field must not keep the viewer.
    return event.key() != Qt::Key_Backspace ||
           !item->inputMethodQuery(Qt::ImSurroundingText).toString().isEmpty();
}

bool PresentationStage::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Keeps the host's shortcuts from firing; the key press follows.
        event->accept();
        return true;
    case QEvent::KeyPress:
        // Keys that a text field does not use come back through the items, to `keyPressEvent`.
        if (isTypingText(*static_cast<QKeyEvent*>(event)))
            return false;
        keyDown(*static_cast<QKeyEvent*>(event));
        event->accept();
        return true;
    case QEvent::KeyRelease:
        if (isTypingText(*static_cast<QKeyEvent*>(event)))
            return false;
        keyUp(*static_cast<QKeyEvent*>(event));
        event->accept();
        return true;
    case QEvent::FocusOut:
        if (!m_layers.empty()) {
            const auto presses = m_layers.back().presses;
            presses->cancelAll();
        }
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        event->accept();
        return true;
    default:
        return false;
    }
}

void PresentationStage::keyPressEvent(QKeyEvent* event)
{
    keyDown(*event);
    event->accept();
}

void PresentationStage::keyReleaseEvent(QKeyEvent* event)
{
    keyUp(*event);
    event->accept();
}

void PresentationStage::keyDown(const QKeyEvent& event)
{
    if (m_layers.empty() || !m_layers.back().focus)
        return;
    const auto type = pressTypeOfKey(event.key(), event.modifiers());
    if (!type) {
        if (const QString text = event.text(); !text.isEmpty() && text.front().isPrint())
            m_layers.back().controller.textTyped(text);
        return;
    }
    if (const FocusHeading heading = headingOf(*type); heading != FocusHeading::None) {
        m_layers.back().focus->move(heading);
        return;
    }
    if (event.isAutoRepeat())
        return;
    m_layers.back().focus->validate();
    if (m_layers.empty() || !m_layers.back().focus)
        return;
    View* first = m_layers.back().focus->focusedView();
    const auto presses = m_layers.back().presses;
    presses->begin(event.key(), *type, first != nullptr ? *first : m_layers.back().controller.view());
}

void PresentationStage::keyUp(const QKeyEvent& event)
{
    if (event.isAutoRepeat() || m_layers.empty())
        return;
    const auto presses = m_layers.back().presses;
    presses->end(event.key());
}

void PresentationStage::noteActiveFocus()
{
    QQuickItem* item = m_window->activeFocusItem();
    if (!m_isEntered || item == nullptr)
        return;
    if (item == this || isAncestorOf(item)) {
        m_ownFocus = item;
        return;
    }
    // The host moved its focus underneath: that item gets the focus back at the end. Changing the focus here
    // would run inside the host's own change of it.
    if (item != m_window->contentItem())
        m_hostFocus = item;
    QMetaObject::invokeMethod(this, &PresentationStage::keepFocus, Qt::QueuedConnection);
}

void PresentationStage::keepFocus()
{
    if (!m_isEntered || hasActiveFocus())
        return;
    QQuickItem* own = m_ownFocus && isAncestorOf(m_ownFocus) ? m_ownFocus.data() : this;
    own->forceActiveFocus(Qt::OtherFocusReason);
}

// Looks

void PresentationStage::layOutCanvas()
{
    MainScreen::refresh();
    const double scale = std::min(width() / m_canvas->width(), height() / m_canvas->height());
    if (scale <= 0)
        return;
    const bool rescaled = scale != m_canvas->scale();
    m_canvas->setScale(scale);
    m_canvas->setPosition(
        {(width() - m_canvas->width() * scale) / 2, (height() - m_canvas->height() * scale) / 2});
    // Only where there are bars can anything outside the canvas be visible.
    m_canvas->setClip(m_canvas->x() > 0 || m_canvas->y() > 0);
    if (rescaled)
        redrawPaintedViews(*m_canvas);
}

void PresentationStage::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    layOutCanvas();
    update();
}

QSGNode* PresentationStage::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    m_synchronised = true;
    auto* node = static_cast<QSGRectangleNode*>(old);
    if (node == nullptr)
        node = window()->createRectangleNode();
    node->setColor(Qt::black);
    node->setRect(boundingRect());
    return node;
}

void PresentationStage::frameSwapped()
{
    if (!m_synchronised || m_reported.exchange(true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            disconnect(m_swapped);
            if (m_isEntered && m_didShowFirstFrame)
                m_didShowFirstFrame();
        },
        Qt::QueuedConnection);
}

} // namespace virlo
