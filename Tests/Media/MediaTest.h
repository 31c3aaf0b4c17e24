#pragma once

#include "AdServer.h"
#include "Clips.h"
#include "NotificationCenter.h"
#include "QueuePlayer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace virlo::test
{

/// An ad server of the program's own that serves clips, and a record of a player's notifications.
class MediaTest : public testing::Test
{
protected:
    MediaTest();
    /// Waits until everything released is torn down.
    ~MediaTest() override;

    [[nodiscard]] static adserver::AdServer& server();

    /// A clip on the server, at `path(name)`.
    [[nodiscard]] std::shared_ptr<PlayerItem> served(const Clip& clip);
    std::shared_ptr<PlayerItem> served(const std::string& name, const Clip& clip);
    /// Whatever is on the server under that name.
    [[nodiscard]] static std::shared_ptr<PlayerItem> atServer(const std::string& name);
    static void serve(const std::string& name, const std::string& bytes);
    [[nodiscard]] static std::string path(const std::string& name);

    /// A player of these whose notifications are recorded.
    std::shared_ptr<QueuePlayer> play(const QueuePlayer::Items& items);
    std::shared_ptr<QueuePlayer> make(const QueuePlayer::Items& items);
    /// Until the queue has run out; false where that takes longer than `limit`.
    [[nodiscard]] bool runsOut(Seconds limit = Seconds(20));

    /// In order: "item N" as current ("none"), "ended N", "failed N", "stalled N", "rate R", "keepup B". N
    /// counts from 0; "keepup none" without an item.
    std::vector<std::string> log;
    /// The same without what does not matter to most: "keepup", "rate".
    [[nodiscard]] std::vector<std::string> ends() const;

    std::shared_ptr<QueuePlayer> player;

private:
    [[nodiscard]] std::string nameOf(const void* item) const;

    std::vector<std::shared_ptr<PlayerItem>> m_items;
    std::vector<std::shared_ptr<void>> m_observers;
    std::vector<std::unique_ptr<NotificationCenter::Observation>> m_notifications;
    int m_clips = 0;
};

} // namespace virlo::test
