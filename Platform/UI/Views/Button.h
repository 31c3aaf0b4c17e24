#pragma once

#include "Control.h"

#include <memory>

namespace virlo
{

class Image;
class ImageView;
class Label;

/// A control with an icon and a title side by side, centred. While focused it has a ring outside its edge, so
/// that the focus is visible on any image; its screen adds the lift (scale and shadow). Its title is its
/// accessible name where none was set.
class Button : public virlo::Control
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged FINAL)
    Q_PROPERTY(QColor titleColor READ titleColor WRITE setTitleColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(double fontSize READ fontSize WRITE setFontSize NOTIFY styleChanged FINAL)
    Q_PROPERTY(double iconHeight READ iconHeight WRITE setIconHeight NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor focusRingColor READ focusRingColor WRITE setFocusRingColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(double focusRingWidth READ focusRingWidth WRITE setFocusRingWidth NOTIFY styleChanged FINAL)

public:
    explicit Button(QQuickItem* superview = nullptr);
    ~Button() override;

    [[nodiscard]] QString title() const;
    void setTitle(const QString& title);
    [[nodiscard]] QColor titleColor() const; ///< white at first
    void setTitleColor(const QColor& color);
    [[nodiscard]] double fontSize() const; ///< 38 points at first
    void setFontSize(double points);
    /// Null for none.
    [[nodiscard]] std::shared_ptr<const Image> icon() const;
    void setIcon(std::shared_ptr<const Image> icon);

    /// In points: for an icon drawn finer than one pixel to a point. 0 at first: the icon's own size.
    [[nodiscard]] double iconHeight() const noexcept { return m_iconHeight; }

    void setIconHeight(double height);
    [[nodiscard]] QColor focusRingColor() const; ///< white at first
    void setFocusRingColor(const QColor& color);
    [[nodiscard]] double focusRingWidth() const; ///< 5 points at first; 0 for no ring
    void setFocusRingWidth(double width);

signals:
    void titleChanged();
    void styleChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    class Ring;

    void layOutContent();

    ImageView* m_icon;
    Label* m_title;
    Ring* m_ring;
    double m_iconHeight = 0;
};

} // namespace virlo
