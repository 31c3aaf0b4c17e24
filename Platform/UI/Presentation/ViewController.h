#pragma once

#include "FocusEnvironment.h"
#include "Responder.h"
#include "SceneInstance.h"
#include "View.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace virlo
{

class WindowPresentation;

/// Controls a screen or a part of one: owns its view, is told when it appears, takes part in the choice of
/// the focus.
///
/// Created by `make` or by a Storyboard, on any thread, and held by shared pointers; used on the main thread
/// only. The last pointer may be released on any thread and inside any of its own calls: the controller, its
/// view and its scene's objects are then destroyed on the main thread, in a later turn of the main loop. A
/// parent keeps its children alive.
///
/// Calls come in this order: `viewDidLoad` once, then for each time on screen `viewWillAppear`,
/// `viewDidAppear` (the first frame with the view has been shown), `viewWillDisappear`, `viewDidDisappear`. A
/// screen dismissed before its first frame skips `viewDidAppear`. Each call reaches the children after the
/// parent's own; an override calls the base's.
class ViewController : public Responder,
                       public FocusEnvironment,
                       public std::enable_shared_from_this<ViewController>
{
public:
    template <typename T, typename... Args>
    [[nodiscard]] static std::shared_ptr<T> make(Args&&... args)
    {
        return {new T(std::forward<Args>(args)...), [](T* controller) { destroyLater(controller); }};
    }

    ViewController();
    ~ViewController() override;
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;

    // The view
    /// Loads the view first where that has not been done.
    [[nodiscard]] View& view();
    void loadViewIfNeeded();

    /// Compiles the scene and reads the device's fonts off the main thread, then loads the view; the main
    /// thread never waits for a font. `done` is called on the main thread, also where the controller has
    /// gone. Any thread.
    void prepareView(std::function<void()> done);

    [[nodiscard]] bool isViewLoaded() const noexcept { return m_view != nullptr; }

    /// Whether the scene could not be loaded (the view is then empty, and `viewDidLoad` was not called) or
    /// lacks an outlet that was asked for. One line in the log says which. Such a controller is not
    /// presented.
    [[nodiscard]] bool sceneHasFailed() const noexcept { return m_scene.failed; }

    // Containment
    /// Adds `child`; a child of another parent moves. The caller places its view: the child appears with its
    /// parent, or at once when its view is added to the view of a parent that is on screen.
    void addChildViewController(const std::shared_ptr<ViewController>& child);
    /// Leaves the parent, which releases this controller; its view leaves its superview, with the
    /// disappearing calls where it was on screen. Nothing where there is no parent.
    void removeFromParentViewController();

    [[nodiscard]] ViewController* parentViewController() const noexcept { return m_parent; }

    [[nodiscard]] const std::vector<std::shared_ptr<ViewController>>& childViewControllers() const noexcept;

    /// Its presentation over a window, or null: for a child its parent's.
    [[nodiscard]] std::shared_ptr<WindowPresentation> presentation() const;
    /// Shows `controller` above everything in this one's presentation, with a focus of its own, until it is
    /// dismissed or the presentation ends; keys go to it alone. Nothing, with a line in the log, where this
    /// controller is in no presentation, `controller` is in one, or its scene cannot be loaded.
    void presentViewController(const std::shared_ptr<ViewController>& controller);
    /// Dismisses the controller presented above others that this is or belongs to, with those above it; else
    /// the whole presentation, if any.
    void dismissViewController();

    /// Text of a real keyboard's key that is no button of the remote, while this is the highest presented
    /// controller and no text field takes it. Nothing unless overridden.
    virtual void textTyped(const QString&) {}

    /// The view.
    [[nodiscard]] View* preferredFocusedView() override;
    [[nodiscard]] Responder* nextResponder() const override;

protected:
    virtual void viewDidLoad() {}

    virtual void viewWillAppear() {}

    virtual void viewDidAppear() {}

    virtual void viewWillDisappear() {}

    virtual void viewDidDisappear() {}

    /// Creates the view: an empty one, or the scene's root where a storyboard made this controller; null
    /// where the scene cannot be loaded.
    [[nodiscard]] virtual std::unique_ptr<View> loadView();

    /// The object in the property `name` of the scene's root. Null where there is no such property or it
    /// holds something else: the scene has then failed. Null without a log line before the view is loaded or
    /// without a scene.
    template <typename T>
    [[nodiscard]] T* outlet(const char* name)
    {
        QObject* object = outletObject(name, T::staticMetaObject);
        return static_cast<T*>(object);
    }

    [[nodiscard]] View* focusEnvironmentView() override { return m_view.get(); }

    [[nodiscard]] FocusEnvironment* parentFocusEnvironment() override;

private:
    friend class Storyboard;
    friend class UIRuntime;
    friend class View;
    friend class WindowPresentation;
    enum class Appearance { Gone, Appearing, Appeared, Disappearing };

    static void destroyLater(ViewController* controller);
    [[nodiscard]] QObject* outletObject(const char* name, const QMetaObject& type);
    void beginAppearing();
    void endAppearing();
    void beginDisappearing();
    void endDisappearing();
    void viewDidMove();
    [[nodiscard]] bool isOnScreen() const;
    /// For the application's end: no view may outlive it.
    static void unloadViews();

    SceneInstance m_scene;
    std::unique_ptr<View> m_view;
    ViewController* m_parent = nullptr;
    std::vector<std::shared_ptr<ViewController>> m_children;
    std::weak_ptr<WindowPresentation> m_presentation;
    Appearance m_appearance = Appearance::Gone;
};

} // namespace virlo
