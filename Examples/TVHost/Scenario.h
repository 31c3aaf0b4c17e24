#pragma once

#include <QJsonObject>
#include <QQuickWindow>
#include <QString>

#include <functional>

class AdIntegration;
class AppPages;
class Game;

/// A scripted run of the host: real key events, images of the window, and waiting for what happens next. Read
/// from a JSON file whose "steps" each have one of these keys:
///
///     {"ask": "Video"}                        an ad for that placement, as a moment of the game asks for it
///     {"press": ["Right", "Return"]}          keys, by the names that follow "Qt::Key_"
///     {"pick": ["j", "Dot", "Done"]}          keys of the on-screen keyboard by their accessible names:
///     arrows
///                                             lead the focus there, Return selects
///     {"image": "counting"}                   NN-counting.png, once nothing moves or a second has passed
///     {"window": "hide"}                      or "show"
///     {"await": {"ad": true}}                 an ad is on the screen; false: the menu is back
///     {"await": {"focused": "Close"}, "pressing": ["Left", "Down"]}   pressed again and again until then
///     {"await": {"shown": "Loading"}}         a visible view of that accessible name
///     {"await": {"page": "/store/.*"}}        the app page that was opened, as a regular expression
///     {"await": {"coins": 50}}                so many more than at the start
///     {"await": {"request": "POST /ad/imp/.*"}}   method and path in the ad server's log;
///                                             also "body", and "times" for more than one
///
/// Main thread; runs the event loop while it waits.
class Scenario
{
public:
    struct Files {
        QString images; ///< an existing folder
        QString log;    ///< the ad server's request log
    };

    Scenario(QQuickWindow& window, Game& game, AdIntegration& ads, const AppPages& pages, Files files);

    /// True when every step came about in time; otherwise it says on standard error which did not.
    [[nodiscard]] bool play(const QString& file);

private:
    [[nodiscard]] bool take(const QJsonObject& step);
    [[nodiscard]] bool awaitCondition(const QJsonObject& condition, const QJsonArray& pressing);
    [[nodiscard]] bool holds(const QJsonObject& condition) const;
    [[nodiscard]] int requestCount(const QJsonObject& condition) const;
    [[nodiscard]] bool takeImage(const QString& name);
    [[nodiscard]] bool pick(const QJsonArray& names);
    void press(const QJsonArray& keys);

    QQuickWindow& m_window;
    Game& m_game;
    AdIntegration& m_ads;
    const AppPages& m_pages;
    const Files m_files;
    const int m_coinsAtStart;
    int m_images = 0;
};
