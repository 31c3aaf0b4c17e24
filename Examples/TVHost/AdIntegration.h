#pragma once

#include <VIRLOAdFramework/VIRLOAdController.h>

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class Game;
class QQuickWindow;

/// Everything that this game does about ads: starts the library, shows an ad at each moment of the game, pays
/// out rewards.
class AdIntegration : public QObject,
                      public VIRLOAdControllerDelegate,
                      public std::enable_shared_from_this<AdIntegration>
{
    Q_OBJECT

public:
    AdIntegration(QQuickWindow& window, Game& game);

    void start();
    void showAd(const QString& placement);

    [[nodiscard]] bool adIsShown() const { return m_adIsShown; }

    void didGetCurrency(const virlo::JSON& info) override;

private:
    QQuickWindow& m_window;
    Game& m_game;
    std::atomic<bool> m_adIsShown{false};
};
