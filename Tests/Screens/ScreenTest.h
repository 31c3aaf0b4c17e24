#pragma once

#include "AdServer.h"
#include "HostWindow.h"
#include "JSON.h"
#include "TestAnimations.h"
#include "TestClock.h"
#include "VIRLOAdFullscreenViewController.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>

#include <functional>
#include <memory>
#include <string>

class VIRLOAdServerAPI;
class VIRLOAdvertisement;
class VIRLOAdViewController;
class VIRLOTimerButton;

namespace virlo
{
class Button;
class ImageView;
} // namespace virlo

namespace virlo::test
{

/// PNG bytes of one colour.
[[nodiscard]] std::string imageFile(const QColor& color, QSize size = {1920, 1080});
/// PNG bytes, or JPEG for that format.
[[nodiscard]] std::string encoded(const QImage& image, const char* format = "PNG");

/// A host's window over which full-screen ads are shown, an ad server of the test program, and the two test
/// clocks. The server accepts every request below "/impression", "/click", "/store" and "/poll"; an image is
/// served once `serve` was called for it. Files are in a folder of the program's.
class ScreenTest : public testing::Test
{
protected:
    ScreenTest();
    ~ScreenTest() override;

    [[nodiscard]] static adserver::AdServer& server();
    /// How often a request for that path came.
    [[nodiscard]] static int requests(const std::string& path);
    [[nodiscard]] static bool awaitRequests(const std::string& path, int count = 1);
    static void serve(const std::string& path, const std::string& body);
    /// In the folder of the program, the library's stores among them.
    [[nodiscard]] static std::size_t fileCount();

    /// An engagement ad of one item whose identifier is used nowhere else. `item` and `button` are laid over
    /// the defaults; a null removes a key.
    [[nodiscard]] JSON ad(const JSON& item = {}, const JSON& button = {}, int secondsToSkip = 3);
    /// `path` on the test's server.
    [[nodiscard]] static std::string url(const std::string& path);

    /// The identifier of the last ad made.
    [[nodiscard]] std::string identifier() const { return m_identifier; }

    using Screen = std::shared_ptr<VIRLOAdFullscreenViewController>;
    /// The screen that the library hands to a host for the ad, once it is ready.
    /// The preloaded screen of an ad of any type.
    [[nodiscard]] std::shared_ptr<VIRLOAdViewController> readyScreen(const JSON& ad);
    /// Presents it and waits for a frame and for `isThere`.
    void present(const std::shared_ptr<VIRLOAdViewController>& screen, const std::function<bool()>& isThere);
    [[nodiscard]] Screen ready(const JSON& ad);
    /// As `ready`, with an image of that colour already in the store.
    [[nodiscard]] Screen readyOver(const QColor& color, const JSON& ad);
    /// Presents over `window` and waits for the first frame.
    void present(const Screen& screen);
    /// Ready, presented.
    [[nodiscard]] Screen shown(const JSON& ad);

    /// Lets the countdown run out and the close symbol fade in.
    void countDown(int seconds);
    void click(Qt::Key key);

    [[nodiscard]] static virlo::Button& actionButton(const Screen& screen);
    [[nodiscard]] static VIRLOTimerButton& closeButton(const Screen& screen);
    [[nodiscard]] static virlo::ImageView& backgroundImage(const Screen& screen);
    [[nodiscard]] static bool isSpinning(const Screen& screen);
    /// "action", "close", "busy", or "none"; "several" must never be.
    [[nodiscard]] static std::string focus(const Screen& screen);

    /// The window as a viewer sees it, at rest. Kept as `name`.png where VIRLO_SCREENSHOTS names a folder.
    QImage shoot(const std::string& name);

    TestClock clock;
    TestAnimations animations;
    std::shared_ptr<VIRLOAdServerAPI> api;
    HostWindow window;

private:
    std::string m_identifier;
};

} // namespace virlo::test
