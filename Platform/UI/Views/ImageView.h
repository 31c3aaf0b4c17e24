#pragma once

#include "View.h"

#include <memory>

namespace virlo
{

class Image;

/// Shows an Image. The texture is made when a frame needs it and destroyed with the image or the view; on the
/// software backend it shares the Image's memory. `cornerRadius` rounds an image that fills the view, as it
/// does the background, unless the image has round corners of its own (`roundsImage`). An empty view draws
/// only its background.
class ImageView : public virlo::View
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ContentMode contentMode READ contentMode WRITE setContentMode NOTIFY contentModeChanged FINAL)
    Q_PROPERTY(bool hasImage READ hasImage NOTIFY imageChanged FINAL)

public:
    /// Fill stretches; AspectFit leaves room; AspectFill crops; Center keeps the image's own size and crops.
    enum class ContentMode { Fill, AspectFit, AspectFill, Center };
    Q_ENUM(ContentMode)

    explicit ImageView(QQuickItem* superview = nullptr);
    ~ImageView() override;

    [[nodiscard]] const std::shared_ptr<const Image>& image() const noexcept { return m_image; }

    void setImage(std::shared_ptr<const Image> image);

    [[nodiscard]] bool hasImage() const noexcept { return m_image != nullptr; }

    [[nodiscard]] ContentMode contentMode() const noexcept { return m_mode; }

    void setContentMode(ContentMode mode);

    /// True at first. Set before an image.
    void setRoundsImage(bool rounds) { m_roundsImage = rounds; }

signals:
    void imageChanged();
    void contentModeChanged();

protected:
    QSGNode* updateContentNode(QSGNode* node) override;

private:
    std::shared_ptr<const Image> m_image;
    ContentMode m_mode = ContentMode::Fill;
    bool m_roundsImage = true;
    bool m_textureIsStale = false;
};

} // namespace virlo
