#pragma once

#include "MediaEngine.h"

#include <string>

namespace virlo
{

/// Stands in where nothing plays: every clip fails at once, and says why.
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
