#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

/// Keeps a window's strip sliding by its Right key and says how regularly its frames come.
class SlideWatch : public QObject
{
public:
    explicit SlideWatch(QQuickWindow& window) : m_window(window)
    {
        m_keys.setInterval(700); // before a slide of 1.25 s has come to rest
        connect(&m_keys, &QTimer::timeout, this, [this] { press(Qt::Key_Right); });
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

    /// Says "slid MEDIAN P99 LONGEST" at the end, in milliseconds between two frames.
    void slide(int seconds)
    {
        press(Qt::Key_Right);
        m_keys.start();
        QTimer::singleShot(200, this, [this] {
            m_intervals.clear();
            m_clock.invalidate();
        });
        QTimer::singleShot(seconds * 1000, this, [this] {
            m_keys.stop();
            std::sort(m_intervals.begin(), m_intervals.end());
            const auto at = [this](std::size_t percent) {
                return m_intervals.empty() ? 1e9 : m_intervals[(m_intervals.size() - 1) * percent / 100];
            };
            std::printf("slid %.3f %.3f %.3f\n", at(50), at(99), at(100));
            std::fflush(stdout);
        });
    }

private:
    QQuickWindow& m_window;
    QTimer m_keys;
    QElapsedTimer m_clock;
    std::vector<double> m_intervals;
};
