#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// What the game's menu shows and offers. Knows nothing of ads: whoever sells the pauses listens to `moment`.
/// Main thread.
class Game : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program")
    Q_PROPERTY(QVariantList tiles READ tiles CONSTANT)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
    Q_PROPERTY(int coins READ coins NOTIFY coinsChanged)

public:
    using QObject::QObject;

    [[nodiscard]] QVariantList tiles() const;

    [[nodiscard]] QString status() const { return m_status; }

    [[nodiscard]] int coins() const { return m_coins; }

    void setStatus(const QString& status);
    void addCoins(int amount);

    Q_INVOKABLE void choose(const QString& placement);

signals:
    void moment(const QString& placement);
    void statusChanged();
    void coinsChanged();

private:
    QString m_status = QStringLiteral("Chapter 3 · The Glass Desert");
    int m_coins = 120;
};
