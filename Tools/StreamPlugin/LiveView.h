#pragma once

#include "EventStream.h"
#include "FrameStore.h"
#include "LiveServer.h"
#include "StandardErrorTap.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>

#include <atomic>
#include <cstdint>

/// Shows the application's first Quick window to the inspector page and takes its keys. A frame is grabbed
/// after the window has drawn one, and only while somebody waits for it; it is encoded on the connection's
/// thread. What takes the focus, and each line of standard error, goes to the page as an event.
///
/// A host that can ask for an ad by placement sets the application's property "virloAdRequester" to an object
/// with the invokable operation choose(QString).
///
/// Made by Qt with the application and deleted with it; main thread, but where a comment says otherwise.
class LiveView : public QObject
{
    Q_OBJECT

public:
    LiveView(std::uint16_t port, std::uint16_t page);
    ~LiveView() override;

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void watch(QQuickWindow* window);
    /// Any thread: the render thread calls it where there is one.
    void requestGrab();
    void grab();
    void tellFocus();
    void press(LiveServer::Key key);

    QPointer<QQuickWindow> m_window;
    std::atomic<bool> m_grabIsQueued = false;
    std::atomic<bool> m_takesRequests = false;
    QElapsedTimer m_sinceFocus;
    QString m_focus;
    EventStream m_events;
    FrameStore m_frames;
    LiveServer m_server;
    StandardErrorTap m_tap;
};
