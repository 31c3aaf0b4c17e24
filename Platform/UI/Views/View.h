#pragma once

#include "FocusEnvironment.h"
#include "LayerItem.h"
#include "Responder.h"

#include <QAccessible>

#include <functional>
#include <memory>
#include <vector>

namespace virlo
{

class FocusEngine;
class TapRecognizer;
class ViewController;

/// A rectangle of a screen: appearance (see LayerItem), subviews, focus and presses.
///
/// Created in QML (`import Virlo.UI`) or by `make`. Views of a scene belong to the scene's root; a view made
/// by `make` belongs to its shared pointers, and `addSubview` holds one. Main thread only, but the last
/// shared pointer may be released on any thread: the view is then destroyed in a later turn of the main loop,
/// never on the caller's stack.
class View : public virlo::LayerItem, public Responder, public FocusEnvironment
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool focusable READ focusable WRITE setFocusable NOTIFY focusabilityChanged FINAL)
    Q_PROPERTY(bool obscuresFocus READ obscuresFocus WRITE setObscuresFocus NOTIFY focusabilityChanged FINAL)
    Q_PROPERTY(bool focused READ isFocused NOTIFY focusedChanged FINAL)
    Q_PROPERTY(
        QString accessibleName READ accessibleName WRITE setAccessibleName NOTIFY accessibleNameChanged FINAL)
    Q_PROPERTY(int tag MEMBER m_tag FINAL)

public:
    template <typename T, typename... Args>
    [[nodiscard]] static std::shared_ptr<T> make(Args&&... args)
    {
        return {new T(std::forward<Args>(args)...), [](T* view) { destroyLater(view); }};
    }

    explicit View(QQuickItem* superview = nullptr);
    ~View() override;

    // The tree
    /// Shows `view` above the other subviews and keeps it alive until it leaves this view; a view that is
    /// here or elsewhere already is moved.
    void addSubview(const std::shared_ptr<View>& view);
    /// As above for a view that something else owns, such as a view controller.
    void addSubview(View& view);
    void insertSubviewAbove(View& view, View& sibling);
    void insertSubviewBelow(View& view, View& sibling);
    void removeFromSuperview();
    [[nodiscard]] View* superview() const;
    /// Lowest first.
    [[nodiscard]] std::vector<View*> subviews() const;
    /// The first view of this tree, this one included, that carries the tag; null where none does.
    [[nodiscard]] View* viewWithTag(int tag);
    /// As they are painted, by z and then by order; QQuickItem's own list is in order alone.
    [[nodiscard]] static QList<QQuickItem*> childrenInPaintOrder(const QQuickItem& item);
    /// Also true for the view itself.
    [[nodiscard]] bool isDescendantOf(const View& view) const;

    /// The controller whose root view this is; null for any other view.
    [[nodiscard]] ViewController* viewController() const noexcept { return m_viewController; }

    /// Makes `view` fill this one whatever its size, as long as it is a direct subview.
    void pinToEdges(View& view);
    /// Keeps `view` at `size` and `margin` away from this view's leading and lower edges, as long as it is a
    /// direct subview.
    void pinToLowerLeadingCorner(View& view, const QSizeF& size, double margin);

    // Focus
    /// `focusable`, unless overridden; an override calls `focusabilityDidChange` when its result changes.
    [[nodiscard]] virtual bool canBecomeFocused() const { return m_focusable; }

    [[nodiscard]] bool focusable() const noexcept { return m_focusable; }

    void setFocusable(bool focusable);

    /// Whether views below it, within its bounds, cannot be focused while it is visible.
    [[nodiscard]] bool obscuresFocus() const noexcept { return m_obscuresFocus; }

    void setObscuresFocus(bool obscures);

    [[nodiscard]] bool isFocused() const noexcept { return m_focused; }

    /// This view if it can become focused, else null.
    [[nodiscard]] View* preferredFocusedView() override;
    void focusabilityDidChange();

    // Presses
    void addGestureRecognizer(const std::shared_ptr<TapRecognizer>& recognizer);
    void removeGestureRecognizer(const std::shared_ptr<TapRecognizer>& recognizer);
    [[nodiscard]] const std::vector<std::shared_ptr<TapRecognizer>>& gestureRecognizers() const noexcept;
    [[nodiscard]] Responder* nextResponder() const override;

    /// The name that a screen reader speaks; empty at first, and then the view is skipped.
    [[nodiscard]] QString accessibleName() const { return m_accessibleName; }

    void setAccessibleName(const QString& name);

signals:
    void focusabilityChanged();
    void focusedChanged();
    void accessibleNameChanged();

protected:
    /// Called after the view was added to a window, left it, or changed its superview.
    virtual void didMoveToWindow() {}

    [[nodiscard]] virtual QAccessible::Role accessibleRole() const { return QAccessible::Pane; }

    [[nodiscard]] View* focusEnvironmentView() override { return this; }

    [[nodiscard]] FocusEnvironment* parentFocusEnvironment() override;

    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    friend class FocusEngine;
    friend class ViewController;

    static void destroyLater(View* view);
    void setFocused(bool focused);
    void revalidateFocus();
    void pin(View& view, const std::function<QRectF()>& frame);

    FocusEngine* m_engine = nullptr; ///< in a screen's root view
    std::vector<std::shared_ptr<View>> m_held;
    std::vector<QMetaObject::Connection> m_pins; ///< keep this view in place in its superview
    std::vector<std::shared_ptr<TapRecognizer>> m_recognizers;
    ViewController* m_viewController = nullptr;
    int m_tag = 0;
    bool m_focusable = false;
    bool m_obscuresFocus = false;
    bool m_focused = false;
    bool m_clear = false;
    QString m_accessibleName;
};

} // namespace virlo
