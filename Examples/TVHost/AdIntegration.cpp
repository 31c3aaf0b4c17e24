#include "AdIntegration.h"

#include "Game.h"

#include <VIRLOAdFramework/VIRLOAdPresenter.h>

#include <QQuickWindow>

AdIntegration::AdIntegration(QQuickWindow& window, Game& game) : m_window(window), m_game(game)
{
    connect(&game, &Game::moment, this, &AdIntegration::showAd);
}

void AdIntegration::start()
{
    const auto ads = VIRLOAdController::sharedAdController();
    ads->setDelegate(weak_from_this());
    ads->startWithAppIdentifier("ember-trail");
}

void AdIntegration::showAd(const QString& placement)
{
    const auto ads = VIRLOAdController::sharedAdController();
    ads->adViewControllerForPlacementWithCompletion(
        placement.toStdString(), [weak = weak_from_this()](const auto& screen, const auto&) {
            const auto self = weak.lock();
            if (!self || !screen) // no screen, no ad: the game goes on
                return;
            self->m_adIsShown = true;
            VIRLOAdPresenter::present(screen, &self->m_window, [weak] {
                if (const auto host = weak.lock())
                    host->m_adIsShown = false;
            });
        });
}

void AdIntegration::didGetCurrency(const virlo::JSON& info)
{
    const int amount = info.value("currencyAmount", 0);
    QMetaObject::invokeMethod(&m_game, [this, amount] { m_game.addCoins(amount); });
}
