#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

/// Keeps what a window shows moving by one of its arrow keys and says how regularly its frames come.
class SlideWatch : public QObject
{
public:
    explicit SlideWatch(QQuickWindow& window) : m_window(window)
    {
        m_keys.setTimerType(Qt::PreciseTimer);
        connect(&m_keys, &QTimer::timeout, this, [this] { press(m_key); });
        connect(&window, &QQuickWindow::frameSwapped, this, [this] {
            if (m_clock.isValid())
                m_intervals.push_back(static_cast<double>(m_clock.nsecsElapsed()) / 1e6);
            m_clock.start();
        });
    }

    void press(Qt::Key key)
    {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(&m_window, &event);
        }
    }

    /// A strip, to the right: a key before each slide of 1.25 s has come to rest. Says "slid MEDIAN P99
    /// LONGEST" at the end, in milliseconds between two frames.
    void slide(int seconds) { move(Qt::Key_Right, 700, seconds * 1000); }

    /// A grid, down by that many lines as a held key does; says the same.
    void scroll(int lines) { move(Qt::Key_Down, heldKeyInterval, lines * heldKeyInterval); }

private:
    static constexpr int heldKeyInterval = 90;

    void move(Qt::Key key, int interval, int milliseconds)
    {
        m_key = key;
        press(key);
        m_keys.start(interval);
        QTimer::singleShot(200, this, [this] {
            m_intervals.clear();
            m_clock.invalidate();
        });
        QTimer::singleShot(milliseconds, this, [this] {
            m_keys.stop();
            std::sort(m_intervals.begin(), m_intervals.end());
            const auto at = [this](std::size_t percent) {
                return m_intervals.empty() ? 1e9 : m_intervals[(m_intervals.size() - 1) * percent / 100];
            };
            std::printf("slid %.3f %.3f %.3f\n", at(50), at(99), at(100));
            std::fflush(stdout);
        });
    }

    QQuickWindow& m_window;
    Qt::Key m_key = Qt::Key_Right;
    QTimer m_keys;
    QElapsedTimer m_clock;
    std::vector<double> m_intervals;
};
