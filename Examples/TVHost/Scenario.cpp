#include "Scenario.h"

#include "AdIntegration.h"
#include "AppPages.h"
#include "Game.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>

#include <cstdio>

Scenario::Scenario(QQuickWindow& window, Game& game, AdIntegration& ads, const AppPages& pages,
                   QString folder)
    : m_window(window)
    , m_game(game)
    , m_ads(ads)
    , m_pages(pages)
    , m_folder(std::move(folder))
{
}

bool Scenario::play()
{
    const int coins = m_game.coins();
    return watchAdAndLeave() && followAdToAppPage() && watchVideoQueue(coins) && watchVideoForReward() &&
           leaveAndReturn();
}

bool Scenario::watchAdAndLeave()
{
    if (!await("the first ad", [this] { return m_ads.adIsShown(); }) || !takeImage("ad-counting"))
        return false;
    press(Qt::Key_Left);
    press(Qt::Key_Down);
    if (!takeImage("close-refused"))
        return false;
    pass(8000); // the count of 5, its last tick and the fade to the close symbol
    press(Qt::Key_Left);
    press(Qt::Key_Down);
    if (!takeImage("close-focused"))
        return false;
    press(Qt::Key_Escape);
    return await("the menu after Menu", [this] { return !m_ads.adIsShown(); }) && takeImage("menu-again");
}

bool Scenario::followAdToAppPage()
{
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    if (!await("the second ad", [this] { return m_ads.adIsShown(); }) || !takeImage("second-ad"))
        return false;
    press(Qt::Key_Return);
    return await("the app page", [this] { return !m_pages.last().empty(); }) &&
           await("the menu behind it", [this] { return !m_ads.adIsShown(); }) && takeImage("app-page");
}

bool Scenario::watchVideoQueue(int coinsBefore)
{
    if (!ask("VideoQueue"))
        return false;
    pass(1500);
    press(Qt::Key_VolumeMute);
    if (!takeImage("video-muted"))
        return false;
    press(Qt::Key_VolumeMute);
    pass(9800); // the first video's end, and the second one's stall at the 240,000th byte
    return takeImage("video-stalled") &&
           await("the end of the videos", [this] { return !m_ads.adIsShown(); }) && awaitCoins(coinsBefore) &&
           takeImage("reward");
}

bool Scenario::watchVideoForReward()
{
    const int before = m_game.coins();
    if (!ask("Video"))
        return false;
    pass(3000);
    return takeImage("video") && await("the end of the video", [this] { return !m_ads.adIsShown(); }) &&
           watchVideoOverImage() && awaitCoins(before) && takeImage("video-reward");
}

bool Scenario::watchVideoOverImage()
{
    if (!ask("VideoOverImage"))
        return false;
    pass(2300); // to the middle of the second quarter
    if (!takeImage("video-over-image"))
        return false;
    press(Qt::Key_Escape);
    if (!takeImage("image-below-video"))
        return false;
    press(Qt::Key_Escape);
    return await("the menu after the image", [this] { return !m_ads.adIsShown(); });
}

bool Scenario::leaveAndReturn()
{
    m_window.hide();
    pass(800);
    m_window.show();
    m_window.requestActivate();
    pass(800);
    return takeImage("foreground");
}

void Scenario::press(Qt::Key key)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_window, &event);
    }
    pass(400);
}

void Scenario::pass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool Scenario::await(const char* what, const std::function<bool()>& condition, int seconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(qint64{seconds} * 1000)) {
            std::fprintf(stderr, "scenario: %s did not come\n", what);
            return false;
        }
        pass(50);
    }
    pass(600);
    return true;
}

bool Scenario::ask(const char* placement)
{
    m_ads.showAd(placement);
    return await(placement, [this] { return m_ads.adIsShown(); });
}

bool Scenario::awaitCoins(int before)
{
    return await(
        "the reward", [this, before] { return m_game.coins() > before; }, 35);
}

bool Scenario::takeImage(const char* step)
{
    const QString file =
        QStringLiteral("%1/%2-%3.png").arg(m_folder).arg(++m_step, 2, 10, QLatin1Char('0')).arg(step);
    if (m_window.grabWindow().save(file))
        return true;
    std::fprintf(stderr, "scenario: cannot write %s\n", qPrintable(file));
    return false;
}
