#pragma once

#include "View.h"

class QQuickText;

namespace virlo
{

/// Plain text; markup is shown as text. Text that is too long ends in an ellipsis.
class Label : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(double fontSize READ fontSize WRITE setFontSize NOTIFY styleChanged FINAL)
    Q_PROPERTY(bool bold READ isBold WRITE setBold NOTIFY styleChanged FINAL)
    Q_PROPERTY(
        Qt::Alignment textAlignment READ textAlignment WRITE setTextAlignment NOTIFY styleChanged FINAL)
    Q_PROPERTY(bool wraps READ wraps WRITE setWraps NOTIFY styleChanged FINAL)
    Q_PROPERTY(QRectF exclusion READ exclusion WRITE setExclusion NOTIFY styleChanged FINAL)

public:
    explicit Label(QQuickItem* superview = nullptr);

    [[nodiscard]] QString text() const;
    void setText(const QString& text);
    [[nodiscard]] QColor textColor() const; ///< black at first
    void setTextColor(const QColor& color);

    /// In points; fractions are kept to the nearest whole point, at least 1. 34 at first.
    [[nodiscard]] double fontSize() const noexcept { return m_fontSize; }

    void setFontSize(double points);
    [[nodiscard]] bool isBold() const;
    void setBold(bool bold);
    /// Without a horizontal part a text begins on the side where its script begins. Vertically centred at
    /// first.
    [[nodiscard]] Qt::Alignment textAlignment() const;
    void setTextAlignment(Qt::Alignment alignment);
    [[nodiscard]] bool wraps() const;
    void setWraps(bool wraps);

    /// A rectangle at the text's right edge into which no line reaches; empty at first.
    [[nodiscard]] QRectF exclusion() const noexcept { return m_exclusion; }

    void setExclusion(const QRectF& exclusion);

signals:
    void textChanged();
    void styleChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void alignByScript();
    void fitLine(QObject& line) const;

    QQuickText* m_text;
    bool m_alignsByScript = true;
    double m_fontSize = 34;
    QRectF m_exclusion;
    QMetaObject::Connection m_lineLayout;
};

} // namespace virlo
