#pragma once

#include "PlayerLayerView.h"
#include "SerialQueue.h"

#include <memory>

/// The view of a video screen: shows its player's frames on its background and hides what lies below it from
/// the focus. Main thread, except for `player`.
class VIRLOAdVideoView : public virlo::PlayerLayerView
{
    Q_OBJECT

public:
    static const char* const kAdVideoViewPlayerAccessQueue;

    explicit VIRLOAdVideoView(QQuickItem* superview = nullptr);

    /// Null while there is none. Any thread.
    [[nodiscard]] std::shared_ptr<virlo::QueuePlayer> player() const;
    void setPlayer(std::shared_ptr<virlo::QueuePlayer> player);

private:
    mutable virlo::SerialQueue m_playerAccess;
};
