#pragma once

#include "PaintedView.h"

#include <memory>

namespace virlo
{

class Image;

/// An image drawn once for the pixels that it takes: over something that moves it is blended without being
/// scaled each time. For what stands still and is small. Main thread.
class PaintedImageView : public PaintedView
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit PaintedImageView(QQuickItem* superview = nullptr);
    ~PaintedImageView() override;

    void setImage(std::shared_ptr<const Image> image);

protected:
    /// Fills the bounds.
    void paint(QPainter& painter) override;

private:
    std::shared_ptr<const Image> m_image;
};

} // namespace virlo
