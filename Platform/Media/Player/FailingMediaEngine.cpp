#include "FailingMediaEngine.h"

#include <utility>

namespace virlo
{

namespace
{

class FailedPlayback : public MediaPlayback
{
public:
    explicit FailedPlayback(Error error)
    {
        m_facts.phase = PlaybackFacts::Phase::Failed;
        m_facts.error = std::move(error);
    }

    void setPlaying(bool) override {}

    void setMuted(bool) override {}

    [[nodiscard]] PlaybackFacts facts() const override { return m_facts; }

    [[nodiscard]] Seconds currentTime() const override { return Seconds(0); }

    [[nodiscard]] std::shared_ptr<const VideoFrame> takeFrame() override { return nullptr; }

    [[nodiscard]] VideoFrameCounts frameCounts() const override { return {}; }

    void notifyAt(Seconds) override {}

private:
    PlaybackFacts m_facts;
};

} // namespace

std::shared_ptr<MediaPlayback> FailingMediaEngine::playbackOfURL(const URL& url, bool, Callbacks)
{
    return std::make_shared<FailedPlayback>(
        Error{errorDomain, failed, {{"Reason", m_reason}, {"URL", url.absoluteString()}}});
}

} // namespace virlo
