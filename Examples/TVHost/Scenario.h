#pragma once

#include <QObject>
#include <QQuickWindow>
#include <QString>

#include <functional>

class AdIntegration;
class AppPages;
class Game;

/// A scripted run: plays the host with real key events as a viewer would, and leaves a image of each
/// step. Main thread; runs the event loop while it waits.
class Scenario
{
public:
    /// `folder` must exist.
    Scenario(QQuickWindow& window, Game& game, AdIntegration& ads, const AppPages& pages, QString folder);

    /// True when every step came about in time; otherwise it says on standard error which did not.
    [[nodiscard]] bool play();

private:
    [[nodiscard]] bool watchAdAndLeave();
    [[nodiscard]] bool followAdToAppPage();
    /// The reward of the second ad comes meanwhile.
    [[nodiscard]] bool watchVideoQueue(int coinsBefore);
    [[nodiscard]] bool watchVideoForReward();
    [[nodiscard]] bool watchVideoOverImage();
    [[nodiscard]] bool leaveAndReturn();

    void press(Qt::Key key);
    void pass(int milliseconds);
    [[nodiscard]] bool await(const char* what, const std::function<bool()>& condition, int seconds = 15);
    /// Asks for an ad at that moment of the game and waits until it stands.
    [[nodiscard]] bool ask(const char* placement);
    [[nodiscard]] bool awaitCoins(int before);
    [[nodiscard]] bool takeImage(const char* step);

    QQuickWindow& m_window;
    Game& m_game;
    AdIntegration& m_ads;
    const AppPages& m_pages;
    QString m_folder;
    int m_step = 0;
};
