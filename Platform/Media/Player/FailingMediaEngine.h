#pragma once

#include "MediaEngine.h"

#include <string>

namespace virlo
{

/// The engine where nothing can be played: every video fails at once, with the reason.
class FailingMediaEngine : public MediaEngine
{
public:
    explicit FailingMediaEngine(std::string reason) : m_reason(std::move(reason)) {}

    [[nodiscard]] std::shared_ptr<MediaPlayback> playbackOfURL(const URL& url, bool muted,
                                                               Callbacks callbacks) override;

private:
    const std::string m_reason;
};

} // namespace virlo
