#include "LiveView.h"

#include <QAccessible>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMetaEnum>
#include <QQuickItem>
#include <QVariant>

namespace
{

constexpr qint64 focusInterval = 50; ///< ms

/// The item of the library's own focus, which draws itself as focused; items of Qt's own focus come second.
QQuickItem* focusedView(QQuickItem* item)
{
    if (!item->isVisible() || item->opacity() == 0)
        return nullptr;
    if (item->property("focused").toBool())
        return item;
    const auto children = item->childItems();
    for (auto child = children.crbegin(); child != children.crend(); ++child)
        if (auto* found = focusedView(*child))
            return found;
    return nullptr;
}

/// Of the item, or else of the nearest one around it that has a name.
QString nameOf(QQuickItem* item)
{
    for (auto* named = item; named != nullptr; named = named->parentItem()) {
        if (auto name = named->property("accessibleName").toString(); !name.isEmpty())
            return name;
        if (auto* accessible = QAccessible::queryAccessibleInterface(named))
            if (auto name = accessible->text(QAccessible::Name); !name.isEmpty())
                return name;
    }
    return QString::fromLatin1(item->metaObject()->className());
}

QObject* requester()
{
    return qApp->property("virloAdRequester").value<QObject*>();
}

} // namespace

LiveView::LiveView(std::uint16_t port, std::uint16_t page)
    : m_frames([this] { requestGrab(); })
    , m_server(m_frames, m_events,
               {[this](LiveServer::Key key) {
                    QMetaObject::invokeMethod(
                        this, [this, key] { press(key); }, Qt::QueuedConnection);
                },
                [this](const QString& placement) {
                    QMetaObject::invokeMethod(
                        this,
                        [placement] {
                            if (auto* host = requester())
                                QMetaObject::invokeMethod(host, "choose", Q_ARG(QString, placement));
                        },
                        Qt::QueuedConnection);
                    return m_takesRequests.load();
                }})
    , m_tap([this](const std::string& line) { m_events.add("log", QString::fromStdString(line)); })
{
    m_sinceFocus.start();
    qApp->installEventFilter(this);
    if (!m_server.start(port, page))
        qWarning("virlostream: cannot listen on 127.0.0.1:%d; the inspector page shows no screen", int{port});
}

LiveView::~LiveView()
{
    m_frames.close();
    m_events.close();
}

bool LiveView::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Expose && !m_window)
        if (auto* window = qobject_cast<QQuickWindow*>(object))
            watch(window);
    return false;
}

void LiveView::watch(QQuickWindow* window)
{
    m_window = window;
    m_takesRequests = requester() != nullptr;
    connect(
        window, &QQuickWindow::frameSwapped, this,
        [this] {
            if (m_frames.noteDrawn())
                requestGrab();
            QMetaObject::invokeMethod(this, &LiveView::tellFocus, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
}

void LiveView::requestGrab()
{
    if (!m_grabIsQueued.exchange(true))
        QMetaObject::invokeMethod(this, &LiveView::grab, Qt::QueuedConnection);
}

void LiveView::grab()
{
    m_grabIsQueued = false;
    m_frames.beginGrab();
    if (m_window && m_window->isExposed())
        if (auto image = m_window->grabWindow(); !image.isNull())
            m_frames.put(std::move(image));
}

void LiveView::tellFocus()
{
    if (!m_window || m_sinceFocus.elapsed() < focusInterval)
        return;
    m_sinceFocus.restart();
    auto* item = focusedView(m_window->contentItem());
    if (item == nullptr)
        item = m_window->activeFocusItem();
    const auto name = item != nullptr ? nameOf(item) : QString();
    if (name == m_focus)
        return;
    m_focus = name;
    m_events.add("focus", name);
}

void LiveView::press(LiveServer::Key key)
{
    auto* window =
        QGuiApplication::focusWindow() != nullptr ? QGuiApplication::focusWindow() : m_window.data();
    if (window == nullptr)
        return;
    const auto name = QString::fromLatin1(QMetaEnum::fromType<Qt::Key>().valueToKey(key.code)).mid(4);
    if (key.down)
        m_events.add("key", name);
    const auto send = [&](QEvent::Type type) {
        QKeyEvent event(type, key.code, Qt::NoModifier, QString(), key.isRepeat);
        QCoreApplication::sendEvent(window, &event);
    };
    if (key.down)
        send(QEvent::KeyPress);
    if (key.up)
        send(QEvent::KeyRelease);
}
