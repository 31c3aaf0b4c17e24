#pragma once

#include "FocusUpdateContext.h"

#include <QMetaObject>
#include <QPointer>
#include <QRectF>

#include <vector>

class QQuickItem;

namespace virlo
{

class FocusEnvironment;
class View;

/// Keeps the focus of one presented screen: exactly one view is focused while any can be. A focused view that
/// goes, is hidden or can no longer be focused hands the focus on at once, by the preferences of the
/// environments around it from the innermost outwards; a view that becomes focusable while none is focused
/// gets it. Owned by the presentation; main thread.
///
/// A view can be focused where it `canBecomeFocused`, is visible and enabled with all its superviews, has
/// some size, is not wholly transparent, nor any of its superviews, and does not lie under a visible view
/// that obscures focus.
class FocusEngine
{
public:
    /// `root` is the screen's own environment; its view is loaded and outlives the engine. Nothing is focused
    /// until `validate`.
    FocusEngine(FocusEnvironment& root, View& rootView);
    ~FocusEngine();
    FocusEngine(const FocusEngine&) = delete;
    FocusEngine& operator=(const FocusEngine&) = delete;

    [[nodiscard]] View* focusedView() const { return m_focused; }

    /// Moves the focus by geometry; guides lead on. The answer tells whether it moved.
    bool move(FocusHeading heading);

    void setNeedsUpdate(FocusEnvironment& environment);
    void updateIfNeeded();
    /// Looks whether the focused view may keep the focus, and for one to have it where none has.
    void validate();

    /// The engine of the screen that shows `view`; null where it is on none.
    [[nodiscard]] static FocusEngine* engineOf(const View& view);
    /// Called by a view's destructor.
    static void viewGoes(View& view);

private:
    struct Candidate {
        QRectF rect;
        View* view; ///< that gets the focus
    };

    using Environments = std::vector<FocusEnvironment*>;
    using Views = std::vector<View*>;

    [[nodiscard]] Views focusableViews() const;
    [[nodiscard]] std::vector<Candidate> candidates(const Views& focusable) const;
    void addGuides(const QQuickItem& item, const Views& focusable, std::vector<Candidate>& candidates) const;
    [[nodiscard]] QRectF rectOf(const QQuickItem& item) const;
    [[nodiscard]] Environments environmentsInTree() const;
    [[nodiscard]] static Environments chainOf(View* view);
    [[nodiscard]] View* resolve(FocusEnvironment& environment, const Views& focusable) const;
    [[nodiscard]] View* firstInside(const FocusEnvironment& environment, const Views& focusable) const;
    [[nodiscard]] View* successor(const Views& focusable) const;

    bool focus(View* next, FocusHeading heading, bool mayBeRefused);
    void follow(View* view);

    FocusEnvironment& m_root;
    View& m_rootView;
    QPointer<View> m_focused;
    Environments
        m_asking; ///< like `m_around`, compared with what is in the tree before any use: they may be gone
    Environments m_around; ///< what held the focused view, innermost first
    std::vector<QMetaObject::Connection> m_connections;
    bool m_moving = false;
    bool m_looksAgain = false;
};

} // namespace virlo
