#include "Scenario.h"

#include "AdIntegration.h"
#include "AppPages.h"
#include "Game.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QKeyEvent>
#include <QMetaEnum>
#include <QQuickItem>
#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace
{

constexpr qint64 longestWait = 60'000; ///< ms; a busy machine gets there later, not never
constexpr qint64 longestMotion = 1'000;

void pass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

QString text(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

bool matches(const QString& expression, const QString& whole)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(expression)).match(whole).hasMatch();
}

/// The visible item of that accessible name; the library's views have it as a property.
const QQuickItem* visibleItem(const QQuickItem* item, const QString& name)
{
    if (!item->isVisible() || item->opacity() == 0)
        return nullptr;
    if (item->property("accessibleName").toString() == name)
        return item;
    for (const QQuickItem* child : item->childItems())
        if (const QQuickItem* found = visibleItem(child, name))
            return found;
    return nullptr;
}

} // namespace

Scenario::Scenario(QQuickWindow& window, Game& game, AdIntegration& ads, const AppPages& pages, Files files)
    : m_window(window)
    , m_game(game)
    , m_ads(ads)
    , m_pages(pages)
    , m_files(std::move(files))
    , m_coinsAtStart(game.coins())
{
}

bool Scenario::play(const QString& file)
{
    QFile source(file);
    const bool opened = source.open(QIODevice::ReadOnly);
    const QJsonArray steps = QJsonDocument::fromJson(source.readAll()).object().value("steps").toArray();
    if (!opened || steps.isEmpty()) {
        std::fprintf(stderr, "scenario: no steps in %s\n", qPrintable(file));
        return false;
    }
    while (!m_window.isActive()) // keys sent before then go nowhere
        pass(20);
    for (const auto& step : steps) {
        if (take(step.toObject()))
            continue;
        std::fprintf(stderr, "scenario: this step failed: %s\n", qPrintable(text(step.toObject())));
        static_cast<void>(takeImage("failed"));
        return false;
    }
    return true;
}

bool Scenario::take(const QJsonObject& step)
{
    if (step.contains("ask")) {
        m_ads.showAd(step["ask"].toString());
        return true;
    }
    if (step.contains("await"))
        return awaitCondition(step["await"].toObject(), step["pressing"].toArray());
    if (step.contains("image"))
        return takeImage(step["image"].toString());
    if (step.contains("pick"))
        return pick(step["pick"].toArray());
    if (step.contains("press")) {
        press(step["press"].toArray());
        return true;
    }
    if (step.contains("window")) {
        const bool shows = step["window"].toString() == "show";
        m_window.setVisible(shows);
        if (shows)
            m_window.requestActivate();
        return true;
    }
    return false;
}

bool Scenario::awaitCondition(const QJsonObject& condition, const QJsonArray& pressing)
{
    QElapsedTimer timer;
    timer.start();
    while (!holds(condition)) {
        if (timer.hasExpired(longestWait))
            return false;
        press(pressing);
        pass(50);
    }
    return true;
}

bool Scenario::holds(const QJsonObject& condition) const
{
    if (condition.contains("ad"))
        return m_ads.adIsShown() == condition["ad"].toBool();
    if (condition.contains("focused")) {
        const QQuickItem* item = visibleItem(m_window.contentItem(), condition["focused"].toString());
        return item != nullptr && item->property("focused").toBool();
    }
    if (condition.contains("shown"))
        return visibleItem(m_window.contentItem(), condition["shown"].toString()) != nullptr;
    if (condition.contains("page"))
        return matches(condition["page"].toString(), QUrl(QString::fromStdString(m_pages.last())).path());
    if (condition.contains("coins"))
        return m_game.coins() - m_coinsAtStart >= condition["coins"].toInt();
    return requestCount(condition) >= condition["times"].toInt(1);
}

int Scenario::requestCount(const QJsonObject& condition) const
{
    int count = 0;
    QFile log(m_files.log);
    static_cast<void>(log.open(QIODevice::ReadOnly)); // no log, no request
    while (!log.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(log.readLine()).object();
        const QString request = line["method"].toString() + ' ' + line["path"].toString();
        if (matches(condition["request"].toString(), request) &&
            matches(condition["body"].toString(".*"), text(line["body"].toObject())))
            ++count;
    }
    return count;
}

bool Scenario::takeImage(const QString& name)
{
    QElapsedTimer timer;
    timer.start();
    QImage image = m_window.grabWindow();
    for (bool moves = true; moves && !timer.hasExpired(longestMotion);) {
        pass(150);
        QImage next = m_window.grabWindow();
        moves = next != image;
        image = std::move(next);
    }
    const QString file =
        QStringLiteral("%1/%2-%3.png").arg(m_files.images).arg(++m_images, 2, 10, QLatin1Char('0')).arg(name);
    if (image.save(file))
        return true;
    std::fprintf(stderr, "scenario: cannot write %s\n", qPrintable(file));
    return false;
}

bool Scenario::pick(const QJsonArray& names)
{
    constexpr int mostMoves = 40;
    const auto middle = [](const QQuickItem& item) {
        return item.mapToScene(QPointF(item.width(), item.height()) / 2);
    };
    for (const auto& name : names) {
        const QQuickItem* const key = visibleItem(m_window.contentItem(), name.toString());
        for (int moves = 0; key != nullptr && !key->property("focused").toBool(); ++moves) {
            const auto keys = key->parentItem()->childItems();
            const auto at = std::find_if(keys.begin(), keys.end(), [](const QQuickItem* one) {
                return one->property("focused").toBool();
            });
            if (at == keys.end() || moves == mostMoves)
                return false;
            const QPointF way = middle(*key) - middle(**at);
            if (qAbs(way.y()) > key->height() / 4)
                press({way.y() > 0 ? "Down" : "Up"});
            else
                press({way.x() > 0 ? "Right" : "Left"});
        }
        if (key == nullptr)
            return false;
        press({"Return"});
    }
    return true;
}

void Scenario::press(const QJsonArray& keys)
{
    const QMetaEnum names = QMetaEnum::fromType<Qt::Key>();
    for (const auto& name : keys) {
        const int key = names.keyToValue(("Key_" + name.toString().toUtf8()).constData());
        // A letter or digit of a real keyboard also types.
        const QString text =
            key > Qt::Key_Space && key <= Qt::Key_Z ? QString(QChar(key)).toLower() : QString();
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier, text);
            QCoreApplication::sendEvent(&m_window, &event);
        }
        pass(50); // what the key begins is under way before the next one
    }
}
