#pragma once

#include "PressDispatcher.h"

#include <QPointer>
#include <QQuickItem>

#include <atomic>
#include <functional>
#include <memory>

class QKeyEvent;
class QQuickWindow;

namespace virlo
{

class FocusEngine;
class ViewController;

/// The item that a presentation puts into a host's window: a black background over everything and the canvas
/// on it. It takes the window's input. Made by WindowPresentation; after `leave` it is out of the window for
/// good. Main thread.
class PresentationStage : public QQuickItem
{
    Q_OBJECT

public:
    PresentationStage(QQuickWindow& window, ViewController& controller,
                      std::function<void()> didShowFirstFrame);
    ~PresentationStage() override;

    /// Puts the controller's view on the canvas and takes the window's input.
    void enter();
    /// Releases the input and returns the focus to the host's item that had it last.
    void leave();

    /// Starts the focus engine, after the view has been told that it appears.
    void startFocus();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    [[nodiscard]] bool isTypingText() const;
    void keyDown(const QKeyEvent& event);
    void keyUp(const QKeyEvent& event);
    void layOutCanvas();
    void noteActiveFocus();
    void keepFocus();
    void frameSwapped();

    QPointer<QQuickWindow> m_window;
    ViewController& m_controller;
    std::function<void()> m_didShowFirstFrame;
    QQuickItem* m_canvas;
    QPointer<QQuickItem> m_hostFocus;
    QPointer<QQuickItem> m_ownFocus; ///< the stage's item that had the window's focus last
    std::shared_ptr<PressDispatcher> m_presses;
    std::unique_ptr<FocusEngine> m_focus;
    QMetaObject::Connection m_swapped;
    std::atomic<bool> m_synchronised{false};
    std::atomic<bool> m_reported{false};
    bool m_isEntered = false;
};

} // namespace virlo
