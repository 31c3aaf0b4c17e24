#include "VIRLOAdVideoView.h"

#include "QueuePlayer.h"

#include <utility>

const char* const VIRLOAdVideoView::kAdVideoViewPlayerAccessQueue =
    "com.virlohq.VIRLOAdVideoViewPlayerAccessQueue";

VIRLOAdVideoView::VIRLOAdVideoView(QQuickItem* superview)
    : PlayerLayerView(superview)
    , m_playerAccess(kAdVideoViewPlayerAccessQueue)
{
    setBackgroundColor(Qt::black);
    setObscuresFocus(true);
}

std::shared_ptr<virlo::QueuePlayer> VIRLOAdVideoView::player() const
{
    return m_playerAccess.read([this] { return PlayerLayerView::player(); });
}

void VIRLOAdVideoView::setPlayer(std::shared_ptr<virlo::QueuePlayer> player)
{
    // Keeps the old player until the queue is left.
    const auto before = this->player();
    m_playerAccess.sync([&] { PlayerLayerView::setPlayer(std::move(player)); });
}
