#include "FocusEngine.h"

#include "FocusGeometry.h"
#include "FocusGuide.h"
#include "MainLoop.h"
#include "View.h"
#include "ViewController.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace virlo
{

namespace
{

std::vector<FocusEngine*>& engines()
{
    static std::vector<FocusEngine*> list;
    return list;
}

template <typename Container, typename T>
bool contains(const Container& container, const T& value)
{
    return std::find(container.begin(), container.end(), value) != container.end();
}

/// The views below `item` that can be focused, lowest first; those under a view that obscures focus are
/// removed again.
void collectFocusable(const QQuickItem& item, const QQuickItem& root, std::vector<View*>& views)
{
    if (!item.isVisible() || !item.isEnabled() || item.opacity() <= 0)
        return;
    auto* view = qobject_cast<View*>(const_cast<QQuickItem*>(&item));
    if (view != nullptr && view->obscuresFocus()) {
        const QRectF covered = view->mapRectToItem(&root, view->boundingRect());
        // One over the whole screen also covers what a scroller holds outside of it.
        const bool coversAll = covered.contains(root.boundingRect());
        const auto isCovered = [&](const View* lower) {
            if (lower->isAncestorOf(view))
                return false;
            return coversAll || covered.contains(lower->mapRectToItem(&root, lower->boundingRect()).center());
        };
        views.erase(std::remove_if(views.begin(), views.end(), isCovered), views.end());
    }
    if (view != nullptr && !view->size().isEmpty() && view->canBecomeFocused())
        views.push_back(view);
    for (const QQuickItem* child : View::childrenInPaintOrder(item))
        collectFocusable(*child, root, views);
}

/// The nearest item around `item` that cuts off what lies outside it, below `root`; null for none.
const QQuickItem* scrollerOf(const QQuickItem& item, const QQuickItem& root)
{
    const QQuickItem* around = item.parentItem();
    while (around != nullptr && around != &root && !around->clip())
        around = around->parentItem();
    return around == &root ? nullptr : around;
}

void collectEnvironments(const QQuickItem& item, std::vector<FocusEnvironment*>& environments)
{
    if (auto* view = qobject_cast<View*>(const_cast<QQuickItem*>(&item))) {
        environments.push_back(view);
        if (view->viewController() != nullptr)
            environments.push_back(view->viewController());
    }
    const auto children = item.childItems();
    for (const QQuickItem* child : children)
        collectEnvironments(*child, environments);
}

} // namespace

FocusEngine::FocusEngine(FocusEnvironment& root, View& rootView, std::function<void()> willMove)
    : m_root(root)
    , m_rootView(rootView)
    , m_willMove(std::move(willMove))
{
    m_rootView.m_engine = this;
    engines().push_back(this);
}

FocusEngine::~FocusEngine()
{
    m_moving = true;
    follow(nullptr);
    engines().erase(std::find(engines().begin(), engines().end(), this));
    m_rootView.m_engine = nullptr;
    if (m_focused)
        m_focused->setFocused(false);
}

FocusEngine* FocusEngine::engineOf(const View& view)
{
    for (const QQuickItem* item = &view; item != nullptr; item = item->parentItem()) {
        const auto* candidate = qobject_cast<const View*>(item);
        if (candidate != nullptr && candidate->m_engine != nullptr)
            return candidate->m_engine;
    }
    return nullptr;
}

void FocusEngine::viewIsDestroyed(View& view)
{
    view.m_focusable = false;
    for (FocusEngine* engine : std::vector(engines())) {
        if (engine->m_focused == &view) {
            engine->follow(nullptr);
            engine->m_focused = nullptr;
            engine->validate();
        }
    }
}

// Where the focus can go

FocusEngine::Views FocusEngine::focusableViews() const
{
    Views views;
    collectFocusable(m_rootView, m_rootView, views);
    return views;
}

QRectF FocusEngine::rectOf(const QQuickItem& item) const
{
    return item.mapRectToItem(&m_rootView, QRectF(0, 0, item.width(), item.height()));
}

/// The part of the item that can be seen: without what items around it cut off, up to `scroller`.
QRectF FocusEngine::visibleRectOf(const QQuickItem& item, const QQuickItem* scroller) const
{
    QRectF rect = rectOf(item);
    for (const QQuickItem* around = scrollerOf(item, m_rootView); around != nullptr && around != scroller;
         around = scrollerOf(*around, m_rootView))
        rect = rect.intersected(rectOf(*around));
    return rect;
}

std::vector<FocusEngine::Candidate> FocusEngine::candidates(const Views& focusable,
                                                            const QQuickItem* scroller) const
{
    std::vector<Candidate> candidates;
    for (View* view : focusable) {
        if (view == m_focused || view->isAncestorOf(m_focused))
            continue;
        const QRectF rect = visibleRectOf(*view, scroller);
        if (!rect.isEmpty())
            candidates.push_back({rect, view});
    }
    addGuides(m_rootView, focusable, candidates);
    return candidates;
}

void FocusEngine::addGuides(const QQuickItem& item, const Views& focusable,
                            std::vector<Candidate>& candidates) const
{
    if (!item.isVisible() || !item.isEnabled())
        return;
    if (const auto* guide = qobject_cast<const FocusGuide*>(&item)) {
        View* preferred = guide->preferredFocusedView();
        View* target = preferred != nullptr && preferred->isDescendantOf(m_rootView)
                           ? resolve(*preferred, focusable)
                           : nullptr;
        if (target != nullptr && target != m_focused && !guide->size().isEmpty())
            candidates.push_back({rectOf(*guide), target});
    }
    const auto children = item.childItems();
    for (const QQuickItem* child : children)
        addGuides(*child, focusable, candidates);
}

FocusEngine::Environments FocusEngine::chainOf(View* view)
{
    Environments chain;
    for (FocusEnvironment* environment = view; environment != nullptr;
         environment = environment->parentFocusEnvironment())
        chain.push_back(environment);
    return chain;
}

FocusEngine::Environments FocusEngine::environmentsInTree() const
{
    Environments environments;
    collectEnvironments(m_rootView, environments);
    if (!contains(environments, &m_root))
        environments.push_back(&m_root);
    return environments;
}

View* FocusEngine::resolve(FocusEnvironment& environment, const Views& focusable) const
{
    constexpr int mostSteps = 32; // preferences may form a cycle
    FocusEnvironment* at = &environment;
    View* found = contains(focusable, dynamic_cast<View*>(at)) ? static_cast<View*>(at) : nullptr;
    for (int step = 0; step < mostSteps; ++step) {
        View* preferred = at->preferredFocusedView();
        if (preferred == nullptr || static_cast<FocusEnvironment*>(preferred) == at)
            break;
        if (contains(focusable, preferred))
            found = preferred;
        at = preferred;
    }
    if (found != nullptr)
        return found;
    if (View* inside = firstInside(*at, focusable))
        return inside;
    return firstInside(environment, focusable);
}

View* FocusEngine::firstInside(const FocusEnvironment& environment, const Views& focusable) const
{
    View* first = nullptr;
    for (View* view : focusable) {
        if (!contains(chainOf(view), &environment))
            continue;
        const auto position = [this](const View* v) {
            const QRectF rect = rectOf(*v);
            return std::tuple(rect.y(), rect.x());
        };
        if (first == nullptr || position(view) < position(first))
            first = view;
    }
    return first;
}

/// The view that gets the focus when the focused one cannot keep it. A container without a preference of its
/// own is skipped: its controller's preference comes before the container's first view.
View* FocusEngine::successor(const Views& focusable) const
{
    const Environments inTree = environmentsInTree();
    for (FocusEnvironment* environment : m_around) {
        if (!contains(inTree, environment))
            continue;
        auto* view = dynamic_cast<View*>(environment);
        View* preferred = environment->preferredFocusedView();
        if (view != nullptr && (preferred == nullptr || preferred == view))
            continue;
        if (View* next = resolve(*environment, focusable))
            return next;
    }
    return resolve(m_root, focusable);
}

// Moving it

bool FocusEngine::move(FocusHeading heading)
{
    validate();
    if (!m_focused || m_moving || heading == FocusHeading::None)
        return false;
    const Views focusable = focusableViews();
    const QQuickItem* const scroller = scrollerOf(*m_focused, m_rootView);
    const std::vector<Candidate> all = candidates(focusable, scroller);
    // A scroller is left only where nothing in it lies ahead: what has scrolled out of it lies, by geometry,
    // behind its neighbours.
    std::vector<Candidate> inside;
    std::copy_if(all.begin(), all.end(), std::back_inserter(inside), [scroller](const Candidate& candidate) {
        return scroller != nullptr && scroller->isAncestorOf(candidate.view);
    });
    View* next = bestOf(inside, heading);
    if (next == nullptr)
        next = bestOf(all, heading);
    return next != nullptr && focus(resolve(*next, focusable), heading, true);
}

View* FocusEngine::bestOf(const std::vector<Candidate>& candidates, FocusHeading heading) const
{
    std::vector<QRectF> rects(candidates.size());
    std::transform(candidates.begin(), candidates.end(), rects.begin(),
                   [](const Candidate& candidate) { return candidate.rect; });
    const int best = bestFocusCandidate(rectOf(*m_focused), heading, rects);
    return best < 0 ? nullptr : candidates[static_cast<std::size_t>(best)].view;
}

void FocusEngine::setNeedsUpdate(FocusEnvironment& environment)
{
    if (contains(m_requesting, &environment))
        return;
    m_requesting.push_back(&environment);
    MainLoop::shared().post([root = QPointer(&m_rootView)] {
        if (root && root->m_engine != nullptr)
            root->m_engine->updateIfNeeded();
    });
}

void FocusEngine::updateIfNeeded()
{
    if (m_moving)
        return;
    const Environments requesting = std::exchange(m_requesting, {});
    for (FocusEnvironment* environment : requesting) {
        if (!contains(m_focused ? chainOf(m_focused) : environmentsInTree(), environment))
            continue;
        if (View* next = resolve(*environment, focusableViews()))
            focus(next, FocusHeading::None, true);
    }
    validate();
}

void FocusEngine::validate()
{
    if (m_moving) {
        m_validatesAgain = true;
        return;
    }
    // A window that is being destroyed takes its views out one after another, an overlay maybe before what it
    // covers: giving the focus to an item of such a window crashes in Qt.
    if (m_rootView.window() == nullptr)
        return;
    const Views focusable = focusableViews();
    if (m_focused && contains(focusable, m_focused.data()))
        return;
    focus(successor(focusable), FocusHeading::None, false);
}

bool FocusEngine::focus(View* next, FocusHeading heading, bool mayBeRefused)
{
    View* previous = m_focused;
    if (next == previous || m_moving)
        return false;

    struct Concerned {
        FocusEnvironment* environment;
        QPointer<View> view; ///< controllers are destroyed in a later turn of the loop, views at any time
        bool isView;
    };

    std::vector<Concerned> concerned;
    const auto add = [&](const Environments& environments, const auto& belongs) {
        for (FocusEnvironment* environment : environments) {
            auto* view = dynamic_cast<View*>(environment);
            if (belongs(environment))
                concerned.push_back({environment, view, view != nullptr});
        }
    };
    const Environments left = chainOf(previous);
    const Environments entered = chainOf(next);
    add(left, [&](auto* environment) { return !contains(entered, environment); });
    add(entered, [&](auto* environment) { return !contains(left, environment); });
    add(entered, [&](auto* environment) { return contains(left, environment); });

    m_moving = true;
    const QPointer<View> nextGuard(next);
    FocusUpdateContext context{previous, next, heading};
    bool refused = false;
    for (const Concerned& one : concerned) {
        if (mayBeRefused && !refused && (!one.isView || one.view))
            refused = !one.environment->shouldUpdateFocusInContext(context);
    }
    if (!refused)
        m_willMove();
    if (!refused && (next == nullptr || nextGuard)) {
        context.previouslyFocusedView = m_focused;
        m_focused = next;
        m_around = entered;
        follow(next);
        if (context.previouslyFocusedView != nullptr)
            context.previouslyFocusedView->setFocused(false);
        // In this order a text field can pass the keys on to its text item when it is told of the focus.
        if (next != nullptr) {
            next->forceActiveFocus(Qt::OtherFocusReason);
            next->setFocused(true);
        }
        FocusAnimationCoordinator coordinator;
        for (const Concerned& one : concerned) {
            if (!one.isView || one.view)
                one.environment->didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
        }
        coordinator.run();
    } else {
        refused = true;
    }
    m_moving = false;
    if (std::exchange(m_validatesAgain, false))
        validate();
    return !refused;
}

void FocusEngine::follow(View* view)
{
    for (const auto& connection : std::exchange(m_connections, {}))
        QObject::disconnect(connection);
    if (view == nullptr)
        return;
    for (QQuickItem* item = view; item != nullptr && item != &m_rootView; item = item->parentItem()) {
        m_connections.push_back(QObject::connect(item, &QQuickItem::parentChanged, &m_rootView, [this] {
            validate();
            if (m_focused)
                follow(m_focused);
        }));
        if (qobject_cast<View*>(item) == nullptr)
            m_connections.push_back(
                QObject::connect(item, &QQuickItem::opacityChanged, &m_rootView, [this] { validate(); }));
    }
}

} // namespace virlo
