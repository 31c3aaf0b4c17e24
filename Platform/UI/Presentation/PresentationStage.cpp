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

    View& view = m_controller.view();
    view.setParentItem(m_canvas);
    view.setPosition({0, 0});
    view.setSize(m_canvas->size());
    m_presses = std::make_shared<PressDispatcher>(view);

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

void PresentationStage::startFocus()
{
    if (!m_isEntered)
        return;
    // A press that is held while the focus moves must not fire the button that lost it.
    m_focus = std::make_unique<FocusEngine>(m_controller, m_controller.view(),
                                            [presses = m_presses] { presses->cancelDelivered(); });
    m_focus->validate();
}

void PresentationStage::leave()
{
    if (!std::exchange(m_isEntered, false))
        return;
    disconnect(m_swapped);
    m_focus.reset();
    m_presses->cancelAll();
    if (m_controller.isViewLoaded() && m_controller.view().parentItem() == m_canvas)
        m_controller.view().setParentItem(nullptr);
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

bool PresentationStage::isTypingText() const
{
    const QQuickItem* item = m_window ? m_window->activeFocusItem() : nullptr;
    return item != nullptr && item->flags().testFlag(ItemAcceptsInputMethod) && isAncestorOf(item);
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
        if (isTypingText())
            return false;
        keyDown(*static_cast<QKeyEvent*>(event));
        event->accept();
        return true;
    case QEvent::KeyRelease:
        if (isTypingText())
            return false;
        keyUp(*static_cast<QKeyEvent*>(event));
        event->accept();
        return true;
    case QEvent::FocusOut:
        m_presses->cancelAll();
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
    const auto type = pressTypeOfKey(event.key(), event.modifiers());
    if (!type || !m_focus)
        return;
    if (const FocusHeading heading = headingOf(*type); heading != FocusHeading::None) {
        m_focus->move(heading);
        return;
    }
    if (event.isAutoRepeat())
        return;
    m_focus->validate();
    if (!m_focus)
        return;
    View* first = m_focus->focusedView();
    const auto presses = m_presses;
    presses->begin(event.key(), *type, first != nullptr ? *first : m_controller.view());
}

void PresentationStage::keyUp(const QKeyEvent& event)
{
    if (event.isAutoRepeat())
        return;
    const auto presses = m_presses;
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
