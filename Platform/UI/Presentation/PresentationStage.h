#pragma once

#include "PressDelivery.h"

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

/// What a presentation puts into a host's window: a black ground over everything, the canvas on it, and the
/// taking of the window's input. Made by WindowPresentation; from `leave` on it is out of the window for good
/// and hands nothing on. Main thread.
class PresentationStage : public QQuickItem
{
    Q_OBJECT

public:
    PresentationStage(QQuickWindow& window, ViewController& controller,
                      std::function<void()> didShowFirstFrame);
    ~PresentationStage() override;

    /// Puts the controller's view on the canvas and takes the window's input.
    void enter();
    /// Gives the input back and the focus to the host's item that had it last.
    void leave();

    /// Begins to keep the focus, once the view has been told that it appears.
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
    std::shared_ptr<PressDelivery> m_presses;
    std::unique_ptr<FocusEngine> m_focus;
    QMetaObject::Connection m_swapped;
    std::atomic<bool> m_synchronised{false};
    std::atomic<bool> m_reported{false};
    bool m_standing = false;
};

} // namespace virlo
