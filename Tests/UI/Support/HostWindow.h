#pragma once

#include "WindowPresentation.h"

#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>

#include <memory>
#include <vector>

class QKeyEvent;

namespace virlo
{
class View;
class ViewController;
} // namespace virlo

namespace virlo::test
{

/// An item of a host that writes down the input that reaches it.
class HostItem : public QQuickItem
{
    Q_OBJECT

public:
    explicit HostItem(QQuickItem* parent);

    std::vector<int> keys; ///< pressed; releases as negative numbers
    int pointerEvents = 0;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

/// A host's window on the screen, 1920 × 1080 unless told, with two items side by side inside a focus scope;
/// the left one has the focus. Keys come the way a device's come.
class HostWindow : public QQuickWindow
{
    Q_OBJECT

public:
    explicit HostWindow(QSize size = {1920, 1080});

    [[nodiscard]] HostItem& left() { return *m_left; }

    [[nodiscard]] HostItem& right() { return *m_right; }

    /// Presents, and waits for the first frame.
    std::shared_ptr<WindowPresentation> present(const std::shared_ptr<ViewController>& controller);

    void press(Qt::Key key);
    void release(Qt::Key key);
    void click(Qt::Key key);
    /// Latin letters and spaces, each as a key of its own.
    void type(const char* text);
    /// Down, repeated as by a held key, and up.
    void hold(Qt::Key key, int repeats);

    /// The window's image, after everything posted has been done and drawn.
    [[nodiscard]] QImage image();

private:
    void send(QEvent::Type type, int key, bool repeated, const QString& text = {});

    HostItem* m_left;
    HostItem* m_right;
};

/// The focused views of the tree, each counted.
[[nodiscard]] std::vector<View*> focusedViews(View& root);

} // namespace virlo::test
