#pragma once

#include "PaintedView.h"

#include <memory>

namespace virlo
{

class Image;

/// An image that is scaled once to the window's pixels: over a video it is then blended without being scaled
/// for each frame. For small images that rarely change. Main thread.
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
