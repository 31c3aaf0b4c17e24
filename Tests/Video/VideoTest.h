#pragma once

#include "FakeMediaEngine.h"
#include "ScreenTest.h"
#include "VIRLOAdVideoViewController.h"

#include <optional>
#include <string>
#include <vector>

namespace virlo::test
{

/// A creative of a test's document. Its media file is `clip`, below "/clip/" on the test's server; its
/// tracking URLs are "/ping/NAME/EVENT".
struct TestVideo {
    std::string name;
    int seconds = 8;
    std::string mediaFiles = {}; ///< elements in place of one clip of 1280×720
};

/// Video ads over a host's window, with pings that are answered and counted.
class VideoTest : public ScreenTest
{
protected:
    using Pings = std::vector<std::string>;
    using Video = std::shared_ptr<VIRLOAdVideoViewController>;

    VideoTest();
    /// Leaves what is shown and waits for its reports.
    ~VideoTest() override;

    [[nodiscard]] static std::string clip(const std::string& name) { return url("/clip/" + name); }

    /// A media file's element.
    [[nodiscard]] static std::string mediaFile(const std::string& address, int width, int height);
    /// A document with one ad that has one impression, "/ping/impression".
    [[nodiscard]] static std::string document(const std::vector<TestVideo>& videos);
    /// A video ad whose document is that one; `item` as for `ad`.
    [[nodiscard]] JSON videoAd(const std::vector<TestVideo>& videos, const JSON& item = {});
    /// An image ad with that document's video over it.
    [[nodiscard]] JSON imageAd(const std::vector<TestVideo>& videos);

    struct Made {
        std::shared_ptr<VIRLOAdViewController> screen;
        OptionalError error;
    };

    /// What the library hands to a host for the ad; nothing where that takes longer than `limit`.
    [[nodiscard]] std::optional<Made> make(const JSON& ad, Seconds limit = Seconds(10));
    [[nodiscard]] Video made(const JSON& ad);
    /// Presents over the window and waits for the first frame.
    void show(const std::shared_ptr<VIRLOAdViewController>& screen);
    [[nodiscard]] Video shownVideo(const JSON& ad);

    [[nodiscard]] bool isOver() { return window.left().hasActiveFocus(); }

    /// The tracking requests since the last call, as "NAME EVENT" or "impression", sorted.
    [[nodiscard]] static Pings pings();
    /// From here on `reports` lists what is reported, in the order in which the requests begin.
    void recordReports();
    [[nodiscard]] static Pings reports();
    [[nodiscard]] static bool isBusy(const Video& video);
    [[nodiscard]] static std::string countOf(const Video& video);

private:
    void serveDocument(const std::vector<TestVideo>& videos);
};

/// A base, destroyed after the members that use it.
struct WithFakeEngine {
    FakeMediaEngine engine;
};

/// The same on a fake engine.
class FakeVideoTest : protected WithFakeEngine, public VideoTest
{
protected:
    /// The video's first frame is ready.
    void ready(const std::string& name, int seconds = 8);
    /// The video's time passes up to `second`, one tick after the other.
    void playTo(const std::string& name, int second);
    void end(const std::string& name, PlaybackFacts::Phase phase = PlaybackFacts::Phase::Ended);
    /// Ready and shown, with the pings of the start taken away.
    [[nodiscard]] Video playing(const JSON& ad, const std::string& name, int seconds = 8);
};

} // namespace virlo::test
