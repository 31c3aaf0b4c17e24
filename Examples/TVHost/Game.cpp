#include "Game.h"

#include <QVariantMap>

namespace
{

QVariantMap tile(const char* title, const char* hint, const char* tint, const char* placement)
{
    return {{"title", title}, {"hint", hint}, {"tint", tint}, {"placement", placement}};
}

} // namespace

QVariantList Game::tiles() const
{
    return {tile("Continue", "Back to the desert", "#c2542d", "LevelUp"),
            tile("Shop", "Lamps, cloaks, maps", "#2f6f6a", "StoreOpen"),
            tile("Scores", "Fastest trails", "#6a4fa3", "UserHighScore"),
            tile("Pause camp", "Rest by the fire", "#2b5c99", "Pause")};
}

void Game::setStatus(const QString& status)
{
    if (m_status == status)
        return;
    m_status = status;
    emit statusChanged();
}

void Game::addCoins(int amount)
{
    m_coins += amount;
    emit coinsChanged();
}

void Game::choose(const QString& placement)
{
    emit moment(placement);
}
