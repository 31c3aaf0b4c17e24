#pragma once

#include "PressDispatcher.h"

#include <QPointer>
#include <QQuickItem>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QKeyEvent;
class QQuickWindow;

namespace virlo
{

class FocusEngine;
class ViewController;

/// The item that a presentation puts into a host's window: a black background over everything and the canvas
/// on it with the presented controllers' views, the lowest first. It takes the window's input and gives it to
/// the highest one; each has a focus of its own. Made by WindowPresentation; after `leave` it is out of the
/// window for good. Main thread.
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

    /// Puts the controller's view above the others on the canvas.
    void push(ViewController& controller);
    /// Takes away the highest one, which is not the first.
    void pop();

    /// Starts the highest controller's focus engine, after its view has been told that it appears.
    void startFocus();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    struct Layer {
        ViewController& controller;
        std::shared_ptr<PressDispatcher> presses;
        std::unique_ptr<FocusEngine> focus;
    };

    [[nodiscard]] bool isTypingText(const QKeyEvent& event) const;
    void keyDown(const QKeyEvent& event);
    void keyUp(const QKeyEvent& event);
    void removeHighest();
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
    std::vector<Layer> m_layers;     ///< lowest first; empty before `enter` and after `leave`
    QMetaObject::Connection m_swapped;
    std::atomic<bool> m_synchronised{false};
    std::atomic<bool> m_reported{false};
    bool m_isEntered = false;
};

} // namespace virlo
