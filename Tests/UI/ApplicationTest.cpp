#include "Application.h"
#include "DesktopURLOpener.h"
#include "GlobalQueue.h"
#include "HostWindow.h"
#include "MainLoop.h"
#include "NotificationCenter.h"
#include "QtMainLoop.h"
#include "Settle.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <qpa/qwindowsysteminterface.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace virlo::test
{

namespace
{

class ApplicationTest : public testing::Test
{
protected:
    std::unique_ptr<NotificationCenter::Observation> note(const char* name, std::string what)
    {
        return NotificationCenter::defaultCenter().addObserver(name, [this, what](const Notification&) {
            EXPECT_TRUE(MainLoop::isMainThread());
            heard.push_back(what);
        });
    }

    /// Runs the application's own loop until its quitting has been dealt with.
    static Seconds quit()
    {
        const auto start = std::chrono::steady_clock::now();
        MainLoop::shared().post([] { QCoreApplication::quit(); });
        QCoreApplication::exec();
        return std::chrono::steady_clock::now() - start;
    }

    std::vector<std::string> heard;
    std::unique_ptr<NotificationCenter::Observation> m_active =
        note(ApplicationDidBecomeActiveNotification, "active");
    std::unique_ptr<NotificationCenter::Observation> m_background =
        note(ApplicationDidEnterBackgroundNotification, "background");
    std::unique_ptr<NotificationCenter::Observation> m_terminate =
        note(ApplicationWillTerminateNotification, "terminate");
};

TEST_F(ApplicationTest, PostsWhatItsWindowsTell)
{
    using Heard = std::vector<std::string>;
    const auto activate = [](QWindow* window) {
        QWindowSystemInterface::handleWindowActivated(window);
        pumpMainLoop();
    };
    HostWindow window;
    activate(nullptr);
    heard.clear();
    activate(&window);
    EXPECT_EQ(std::exchange(heard, {}), (Heard{"active"}));
    activate(nullptr);
    EXPECT_EQ(heard, Heard{}) << "inactive, but still to be seen";
    window.hide();
    pumpMainLoop();
    EXPECT_EQ(std::exchange(heard, {}), (Heard{"background"}));
    window.show();
    activate(&window);
    EXPECT_EQ(std::exchange(heard, {}), (Heard{"active"}));
    window.hide();
    EXPECT_EQ(heard, Heard{}) << "another window may be about to take its place";
    pumpMainLoop();
    EXPECT_EQ(heard, (Heard{"background"})) << "also where the platform still calls it active";
    activate(nullptr);
    EXPECT_EQ(heard.size(), 1U);
}

TEST_F(ApplicationTest, LetsTheLastWorkLeaveBeforeItQuits)
{
    std::atomic<int> done{0};
    const auto last = NotificationCenter::defaultCenter().addObserver(
        ApplicationWillTerminateNotification, [&](const Notification&) {
            GlobalQueue::background().async([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                GlobalQueue::standard().async([&] { ++done; });
            });
        });
    EXPECT_LT(quit(), Application::terminationLimit);
    EXPECT_EQ(done, 1);
    EXPECT_EQ(heard.back(), "terminate");
}

TEST_F(ApplicationTest, WorkThatHangsHoldsTheEndUpForABoundedTime)
{
    auto release = std::make_shared<std::promise<void>>();
    GlobalQueue::background().async([held = release->get_future().share()] { held.wait(); });
    const Seconds taken = quit();
    release->set_value();
    EXPECT_LT(taken, Application::terminationLimit + Seconds(0.5));
}

std::vector<int>& postedBeforeTheApplication()
{
    static std::vector<int> order;
    return order;
}

/// Runs before main, and so before there is an application.
const bool posted = [] {
    for (int i = 0; i < 3; ++i)
        MainLoop::shared().post([i] { postedBeforeTheApplication().push_back(i); });
    return true;
}();

TEST(QtMainLoop, RunsWhatWasPostedBeforeTheApplication)
{
    ASSERT_TRUE(posted);
    EXPECT_EQ(&MainLoop::shared(), &QtMainLoop::instance());
    EXPECT_TRUE(settle([] { return postedBeforeTheApplication().size() == 3; }));
    EXPECT_EQ(postedBeforeTheApplication(), (std::vector{0, 1, 2}));
}

class Opener : public URLOpener
{
public:
    Opener() { Application::setURLOpener(this); }

    ~Opener() override { Application::setURLOpener(nullptr); }

    bool open(const URL& url) override
    {
        EXPECT_FALSE(MainLoop::isMainThread());
        opened.push_back(url.absoluteString());
        return accepts;
    }

    bool accepts = true;
    std::vector<std::string> opened;
};

TEST_F(ApplicationTest, OpensURLsByTheOpenerInForceOffTheMainThread)
{
    Opener opener;
    std::vector<bool> answers;
    const auto note = [&](bool accepted) {
        EXPECT_TRUE(MainLoop::isMainThread());
        answers.push_back(accepted);
    };
    Application::openURL(URL::fromString("app://one"), note);
    Application::openURL(std::nullopt, note);
    Application::openURL(URL::fromString("app://two"));
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(settle([&] { return answers.size() == 2; }));
    settleAll();
    EXPECT_EQ(answers, (std::vector{true, false}));
    EXPECT_EQ(opener.opened, (std::vector<std::string>{"app://one", "app://two"}));
    opener.accepts = false;
    Application::openURL(URL::fromString("app://three"), note);
    EXPECT_TRUE(settle([&] { return answers.size() == 3; }));
    EXPECT_FALSE(answers.back());
}

TEST(DesktopURLOpener, AsksTheDesktopAndHearsItsRefusal)
{
    const TemporaryFolder folder;
    folder.write("bin/xdg-open",
                 "#!/bin/sh\necho \"$1\" >> \"$HOME/opened\"\ncase \"$1\" in *refused*) exit 4;; esac\n");
    ASSERT_EQ(::chmod(folder.path("bin/xdg-open").c_str(), 0755), 0);
    const QByteArray before = qgetenv("PATH");
    const QByteArray home = qgetenv("HOME");
    qputenv("PATH", QByteArray::fromStdString(folder.path("bin")) + ":" + before);
    qputenv("HOME", QByteArray::fromStdString(folder.path()));
    DesktopURLOpener opener;
    EXPECT_TRUE(opener.open(*URL::fromString("https://shop.example/a?b=c&d='$(id)")));
    EXPECT_FALSE(opener.open(*URL::fromString("https://refused.example/")));
    EXPECT_FALSE(opener.open(*URL::fromString("file:///etc/passwd")));
    EXPECT_FALSE(opener.open(*URL::fromString("relative")));
    qputenv("PATH", QByteArray::fromStdString(folder.path("nowhere")));
    EXPECT_FALSE(opener.open(*URL::fromString("https://shop.example/")));
    qputenv("PATH", before);
    qputenv("HOME", home);
    EXPECT_EQ(folder.read("opened"), "https://shop.example/a?b=c&d='$(id)\nhttps://refused.example/\n");
}

} // namespace

} // namespace virlo::test
