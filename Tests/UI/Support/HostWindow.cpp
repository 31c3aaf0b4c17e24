#include "HostWindow.h"

#include "Settle.h"
#include "View.h"
#include "ViewController.h"

#include <QKeyEvent>
#include <QTest>

#include <gtest/gtest.h>

namespace virlo::test
{

HostItem::HostItem(QQuickItem* parent) : QQuickItem(parent)
{
    setAcceptedMouseButtons(Qt::AllButtons);
}

void HostItem::keyPressEvent(QKeyEvent* event)
{
    keys.push_back(event->key());
}

void HostItem::keyReleaseEvent(QKeyEvent* event)
{
    keys.push_back(-event->key());
}

void HostItem::mousePressEvent(QMouseEvent*)
{
    ++pointerEvents;
}

void HostItem::wheelEvent(QWheelEvent*)
{
    ++pointerEvents;
}

HostWindow::HostWindow(QSize size)
{
    auto* scope = new QQuickItem(contentItem());
    scope->setFlag(QQuickItem::ItemIsFocusScope);
    scope->setSize(size);
    m_left = new HostItem(scope);
    m_left->setSize(QSizeF(size.width() / 2, size.height()));
    m_right = new HostItem(scope);
    m_right->setX(size.width() / 2);
    m_right->setSize(m_left->size());
    resize(size);
    setColor(Qt::blue);
    show();
    requestActivate();
    m_left->forceActiveFocus();
    EXPECT_TRUE(settle([this] { return isExposed() && isActive(); }));
}

std::shared_ptr<WindowPresentation> HostWindow::present(const std::shared_ptr<ViewController>& controller)
{
    auto shown = std::make_shared<bool>(false);
    auto presentation = WindowPresentation::present(controller, this, {[shown] { *shown = true; }, {}});
    EXPECT_TRUE(settle([shown] { return *shown; }));
    return presentation;
}

void HostWindow::send(QEvent::Type type, int key, bool repeated, const QString& text)
{
    // As the platform's plug-in hands keys in: shortcuts are looked for first.
    qt_handleKeyEvent(this, type, key, Qt::NoModifier, text, repeated);
    QCoreApplication::processEvents();
}

void HostWindow::press(Qt::Key key)
{
    send(QEvent::KeyPress, key, false);
}

void HostWindow::release(Qt::Key key)
{
    send(QEvent::KeyRelease, key, false);
}

void HostWindow::click(Qt::Key key)
{
    press(key);
    release(key);
}

void HostWindow::type(const char* text)
{
    for (const char* letter = text; *letter != 0; ++letter) {
        const QChar character = QLatin1Char(*letter);
        send(QEvent::KeyPress, character.toUpper().unicode(), false, character);
        send(QEvent::KeyRelease, character.toUpper().unicode(), false, character);
    }
}

void HostWindow::hold(Qt::Key key, int repeats)
{
    press(key);
    for (int i = 0; i < repeats; ++i) {
        send(QEvent::KeyRelease, key, true);
        send(QEvent::KeyPress, key, true);
    }
    release(key);
}

QImage HostWindow::image()
{
    pumpMainLoop();
    return grabWindow();
}

std::vector<View*> focusedViews(View& root)
{
    std::vector<View*> found;
    if (root.isFocused())
        found.push_back(&root);
    for (View* subview : root.subviews()) {
        const auto inside = focusedViews(*subview);
        found.insert(found.end(), inside.begin(), inside.end());
    }
    return found;
}

} // namespace virlo::test
