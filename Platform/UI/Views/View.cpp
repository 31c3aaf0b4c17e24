#include "View.h"

#include "FocusEngine.h"
#include "MainLoop.h"
#include "TapRecognizer.h"
#include "ViewController.h"

#include <private/qqmlmetatype_p.h>
#include <private/qquickaccessibleattached_p.h>

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

QQuickAccessibleAttached& accessible(const QObject* object)
{
    // A program that has not loaded any QML yet does not know the attached type; one that has must not be
    // told of the module a second time.
    static const bool known =
        qmlAttachedPropertiesFunction(nullptr, &QQuickAccessibleAttached::staticMetaObject) != nullptr ||
        QQmlMetaType::qmlRegisterModuleTypes(QStringLiteral("QtQuick"));
    (void)known;
    return *qobject_cast<QQuickAccessibleAttached*>(
        qmlAttachedPropertiesObject<QQuickAccessibleAttached>(object, true));
}

} // namespace

View::View(QQuickItem* superview) : LayerItem(superview) {}

View::~View()
{
    FocusEngine::viewIsDestroyed(*this);
}

void View::destroyLater(View* view)
{
    MainLoop::shared().post([view] { delete view; });
}

// The tree

void View::addSubview(const std::shared_ptr<View>& view)
{
    addSubview(*view);
    if (std::find(m_held.begin(), m_held.end(), view) == m_held.end())
        m_held.push_back(view);
}

void View::addSubview(View& view)
{
    view.setParentItem(this);
    QQuickItem* last = childItems().constLast();
    if (last != &view)
        view.stackAfter(last);
}

void View::insertSubviewAbove(View& view, View& sibling)
{
    view.setParentItem(sibling.parentItem());
    view.stackAfter(&sibling);
}

void View::insertSubviewBelow(View& view, View& sibling)
{
    view.setParentItem(sibling.parentItem());
    view.stackBefore(&sibling);
}

void View::removeFromSuperview()
{
    setParentItem(nullptr);
}

View* View::superview() const
{
    for (QQuickItem* item = parentItem(); item != nullptr; item = item->parentItem()) {
        if (auto* view = qobject_cast<View*>(item))
            return view;
    }
    return nullptr;
}

namespace
{

void collectSubviews(const QQuickItem& item, std::vector<View*>& views)
{
    for (QQuickItem* child : View::childrenInPaintOrder(item)) {
        if (auto* view = qobject_cast<View*>(child))
            views.push_back(view);
        else
            collectSubviews(*child, views);
    }
}

} // namespace

std::vector<View*> View::subviews() const
{
    std::vector<View*> views;
    collectSubviews(*this, views);
    return views;
}

QList<QQuickItem*> View::childrenInPaintOrder(const QQuickItem& item)
{
    auto children = item.childItems();
    std::stable_sort(children.begin(), children.end(),
                     [](const QQuickItem* one, const QQuickItem* other) { return one->z() < other->z(); });
    return children;
}

View* View::viewWithTag(int tag)
{
    if (m_tag == tag)
        return this;
    for (View* subview : subviews()) {
        if (View* found = subview->viewWithTag(tag))
            return found;
    }
    return nullptr;
}

bool View::isDescendantOf(const View& view) const
{
    return this == &view || view.isAncestorOf(this);
}

void View::pin(View& view, const std::function<QRectF()>& frame)
{
    for (const auto& connection : std::exchange(view.m_pins, {}))
        disconnect(connection);
    const auto place = [this, pinned = &view, frame] {
        if (pinned->parentItem() != this)
            return;
        const QRectF rect = frame();
        pinned->setPosition(rect.topLeft());
        pinned->setSize(rect.size());
    };
    view.m_pins = {connect(this, &QQuickItem::widthChanged, &view, place),
                   connect(this, &QQuickItem::heightChanged, &view, place)};
    place();
}

void View::pinToEdges(View& view)
{
    pin(view, [this] { return QRectF(QPointF(), size()); });
}

void View::pinToLowerLeadingCorner(View& view, const QSizeF& size, double margin)
{
    pin(view,
        [this, size, margin] { return QRectF(QPointF(margin, height() - margin - size.height()), size); });
}

// Focus

void View::setFocusable(bool focusable)
{
    if (std::exchange(m_focusable, focusable) == focusable)
        return;
    emit focusabilityChanged();
    revalidateFocus();
}

void View::setObscuresFocus(bool obscures)
{
    if (std::exchange(m_obscuresFocus, obscures) == obscures)
        return;
    emit focusabilityChanged();
    revalidateFocus();
}

View* View::preferredFocusedView()
{
    return canBecomeFocused() ? this : nullptr;
}

void View::focusabilityDidChange()
{
    emit focusabilityChanged();
    revalidateFocus();
}

void View::revalidateFocus()
{
    if (FocusEngine* engine = FocusEngine::engineOf(*this))
        engine->validate();
}

void View::setFocused(bool focused)
{
    if (std::exchange(m_focused, focused) == focused)
        return;
    emit focusedChanged();
}

FocusEnvironment* View::parentFocusEnvironment()
{
    if (m_viewController != nullptr)
        return m_viewController;
    return superview();
}

// Presses

void View::addGestureRecognizer(const std::shared_ptr<TapRecognizer>& recognizer)
{
    if (recognizer &&
        std::find(m_recognizers.begin(), m_recognizers.end(), recognizer) == m_recognizers.end())
        m_recognizers.push_back(recognizer);
}

void View::removeGestureRecognizer(const std::shared_ptr<TapRecognizer>& recognizer)
{
    m_recognizers.erase(std::remove(m_recognizers.begin(), m_recognizers.end(), recognizer),
                        m_recognizers.end());
}

const std::vector<std::shared_ptr<TapRecognizer>>& View::gestureRecognizers() const noexcept
{
    return m_recognizers;
}

Responder* View::nextResponder() const
{
    if (m_viewController != nullptr)
        return m_viewController;
    return superview();
}

void View::setAccessibleName(const QString& name)
{
    if (name == m_accessibleName)
        return;
    m_accessibleName = name;
    QQuickAccessibleAttached& attached = accessible(this);
    attached.setRole(accessibleRole());
    attached.setName(name);
    emit accessibleNameChanged();
}

// Notifications from Qt

void View::itemChange(ItemChange change, const ItemChangeData& data)
{
    LayerItem::itemChange(change, data);
    switch (change) {
    case ItemParentHasChanged:
    case ItemSceneChange:
        if (m_viewController != nullptr)
            m_viewController->viewDidMove();
        revalidateFocus();
        didMoveToWindow();
        break;
    case ItemChildRemovedChange:
        m_held.erase(
            std::remove_if(m_held.begin(), m_held.end(),
                           [&](const std::shared_ptr<View>& view) { return view.get() == data.item; }),
            m_held.end());
        break;
    case ItemVisibleHasChanged:
    case ItemEnabledHasChanged:
        revalidateFocus();
        break;
    case ItemOpacityHasChanged:
        if (const bool clear = data.realValue <= 0; std::exchange(m_clear, clear) != clear)
            revalidateFocus();
        break;
    default:
        break;
    }
}

void View::geometryChange(const QRectF& now, const QRectF& before)
{
    LayerItem::geometryChange(now, before);
    if (now.isEmpty() != before.isEmpty())
        revalidateFocus();
}

} // namespace virlo
