#include "View.h"

#include "Application.h"
#include "FocusEngine.h"
#include "MainLoop.h"
#include "QtMainLoop.h"
#include "TapRecognizer.h"
#include "ViewController.h"

#include <private/qqmlmetatype_p.h>
#include <private/qquickaccessibleattached_p.h>
#include <private/qquickanchors_p.h>
#include <private/qquickitem_p.h>

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

/// A program that shows views has the main loop and the application's life from the start: naming them here
/// keeps them in a program that links this library statically.
[[maybe_unused]] static const bool runtimeKept = [] {
    (void)QtMainLoop::instance();
    Application::require();
    return true;
}();

View::View(QQuickItem* superview) : LayerItem(superview) {}

View::~View()
{
    FocusEngine::viewGoes(*this);
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
    for (QQuickItem* child : QQuickItemPrivate::get(&item)->paintOrderChildItems()) {
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

void View::pinToEdges(View& view)
{
    if (view.parentItem() == this)
        QQuickItemPrivate::get(&view)->anchors()->setFill(this);
}

void View::pinToLowerLeadingCorner(View& view, const QSizeF& size, double margin)
{
    view.setSize(size);
    if (view.parentItem() != this)
        return;
    QQuickItemPrivate* const own = QQuickItemPrivate::get(this);
    QQuickAnchors& anchors = *QQuickItemPrivate::get(&view)->anchors();
    anchors.setLeft(own->left());
    anchors.setLeftMargin(margin);
    anchors.setBottom(own->bottom());
    anchors.setBottomMargin(margin);
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

// What Qt tells

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
