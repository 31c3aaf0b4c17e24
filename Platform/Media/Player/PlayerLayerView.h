#pragma once

#include "View.h"

#include <memory>

namespace virlo
{

class QueuePlayer;

/// A view that shows a player's frames as large as its bounds allow, in their own shape, centred; the rest
/// shows the background. Several views may show one player. The last frame stays until the next item has one,
/// and when the queue has run out; without a player nothing is shown.
///
/// A frame is drawn from the memory in which it was decoded, in the window's next frame; while the video is
/// paused nothing is drawn. Main thread.
class PlayerLayerView : public virlo::View
{
    Q_OBJECT

public:
    explicit PlayerLayerView(QQuickItem* superview = nullptr);
    ~PlayerLayerView() override;

    [[nodiscard]] const std::shared_ptr<QueuePlayer>& player() const noexcept { return m_player; }

    void setPlayer(std::shared_ptr<QueuePlayer> player);

    /// Where in the view the frame is shown; empty while there is none.
    [[nodiscard]] QRectF videoRect() const;

protected:
    QSGNode* updateContentNode(QSGNode* node) override;

private:
    std::shared_ptr<QueuePlayer> m_player;
    std::shared_ptr<void> m_frameObserver;
    double m_aspectRatio = 0; ///< of the shown frame; 0 for none
    bool m_hasNewFrame = false;
};

} // namespace virlo
