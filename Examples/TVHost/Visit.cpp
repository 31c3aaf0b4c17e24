#include "Visit.h"

#include "AdIntegration.h"
#include "AppPages.h"
#include "Game.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>

#include <cstdio>

Visit::Visit(QQuickWindow& window, Game& game, AdIntegration& ads, const AppPages& pages, QString folder)
    : m_window(window)
    , m_game(game)
    , m_ads(ads)
    , m_pages(pages)
    , m_folder(std::move(folder))
{
}

bool Visit::play()
{
    const int coins = m_game.coins();
    return watchAdAndLeave() && followAdToAppPage() && watchQueueOfFilms(coins) && watchFilmForReward() &&
           leaveAndReturn();
}

bool Visit::watchAdAndLeave()
{
    if (!await("the first ad", [this] { return m_ads.adStands(); }) || !shoot("ad-counting"))
        return false;
    press(Qt::Key_Left);
    press(Qt::Key_Down);
    if (!shoot("close-refused"))
        return false;
    pass(8000); // the count of 5, its last tick and the fade to the close symbol
    press(Qt::Key_Left);
    press(Qt::Key_Down);
    if (!shoot("close-focused"))
        return false;
    press(Qt::Key_Escape);
    return await("the menu after Menu", [this] { return !m_ads.adStands(); }) && shoot("menu-again");
}

bool Visit::followAdToAppPage()
{
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    press(Qt::Key_Return);
    if (!await("the second ad", [this] { return m_ads.adStands(); }) || !shoot("second-ad"))
        return false;
    press(Qt::Key_Return);
    return await("the app page", [this] { return !m_pages.last().empty(); }) &&
           await("the menu behind it", [this] { return !m_ads.adStands(); }) && shoot("app-page");
}

bool Visit::watchQueueOfFilms(int coinsBefore)
{
    if (!ask("FilmQueue"))
        return false;
    pass(1500);
    press(Qt::Key_VolumeMute);
    if (!shoot("film-muted"))
        return false;
    press(Qt::Key_VolumeMute);
    pass(9800); // the first film's end, and the second one's stall at the 240,000th byte
    return shoot("film-stalled") && await("the end of the films", [this] { return !m_ads.adStands(); }) &&
           awaitCoins(coinsBefore) && shoot("reward");
}

bool Visit::watchFilmForReward()
{
    const int before = m_game.coins();
    if (!ask("Film"))
        return false;
    pass(3000);
    return shoot("film") && await("the end of the film", [this] { return !m_ads.adStands(); }) &&
           watchFilmOverPicture() && awaitCoins(before) && shoot("film-reward");
}

bool Visit::watchFilmOverPicture()
{
    if (!ask("FilmOverPicture"))
        return false;
    pass(2300); // to the middle of the second quarter
    if (!shoot("film-over-picture"))
        return false;
    press(Qt::Key_Escape);
    if (!shoot("picture-below-film"))
        return false;
    press(Qt::Key_Escape);
    return await("the menu after the picture", [this] { return !m_ads.adStands(); });
}

bool Visit::leaveAndReturn()
{
    m_window.hide();
    pass(800);
    m_window.show();
    m_window.requestActivate();
    pass(800);
    return shoot("foreground");
}

void Visit::press(Qt::Key key)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_window, &event);
    }
    pass(400);
}

void Visit::pass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool Visit::await(const char* what, const std::function<bool()>& condition, int seconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(qint64{seconds} * 1000)) {
            std::fprintf(stderr, "visit: %s did not come\n", what);
            return false;
        }
        pass(50);
    }
    pass(600);
    return true;
}

bool Visit::ask(const char* placement)
{
    m_ads.showAd(placement);
    return await(placement, [this] { return m_ads.adStands(); });
}

bool Visit::awaitCoins(int before)
{
    return await(
        "the reward", [this, before] { return m_game.coins() > before; }, 35);
}

bool Visit::shoot(const char* step)
{
    const QString file =
        QStringLiteral("%1/%2-%3.png").arg(m_folder).arg(++m_step, 2, 10, QLatin1Char('0')).arg(step);
    if (m_window.grabWindow().save(file))
        return true;
    std::fprintf(stderr, "visit: cannot write %s\n", qPrintable(file));
    return false;
}
