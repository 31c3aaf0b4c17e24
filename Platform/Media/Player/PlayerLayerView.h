#pragma once

#include "View.h"

#include <memory>

namespace virlo
{

class QueuePlayer;

/// A view that shows a player's pictures as large as its bounds allow, in their own shape, in the middle;
/// what is left of it shows the background. Several views may show one player. The last picture stays while
/// the next item's first one is still to come, and when the queue has run out; without a player nothing is
/// shown.
///
/// A picture is drawn from the memory in which it was decoded (on a graphics processor it is loaded into one
/// texture that is used again), in the next frame of the window; at rest nothing is drawn. Main thread.
class PlayerLayerView : public virlo::View
{
    Q_OBJECT

public:
    explicit PlayerLayerView(QQuickItem* superview = nullptr);
    ~PlayerLayerView() override;

    [[nodiscard]] const std::shared_ptr<QueuePlayer>& player() const noexcept { return m_player; }

    void setPlayer(std::shared_ptr<QueuePlayer> player);

    /// Where in the view the picture stands; empty while there is none.
    [[nodiscard]] QRectF videoRect() const;

protected:
    QSGNode* updateContentNode(QSGNode* node) override;

private:
    std::shared_ptr<QueuePlayer> m_player;
    std::shared_ptr<void> m_frameObserver;
    double m_aspectRatio = 0; ///< of the picture shown; 0 for none
    bool m_hasNewFrame = false;
};

} // namespace virlo
