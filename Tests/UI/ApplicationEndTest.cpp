#include "Animation.h"
#include "Application.h"
#include "Button.h"
#include "MainLoop.h"
#include "Storyboard.h"
#include "ViewController.h"
#include "WindowPresentation.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQuickWindow>

namespace virlo::test
{

namespace
{

/// What a careless host leaves behind: it outlives the application.
std::shared_ptr<ViewController>& forgotten()
{
    static std::shared_ptr<ViewController> controller;
    return controller;
}

class Screen : public ViewController
{
public:
    explicit Screen(bool& gone) : m_gone(gone) {}

    ~Screen() override { m_gone = true; }

protected:
    void viewDidLoad() override
    {
        auto button = View::make<Button>();
        button->setTitle("Go");
        button->setFrame({10, 10, 300, 90});
        view().addSubview(button);
    }

private:
    bool& m_gone;
};

class ApplicationEnd : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        Application::start();
    }

    int argc = 1;
    char name[8] = "test";
    char* argv[2] = {name, nullptr};
};

/// Twice, since a program may make a second application after the first.
TEST_F(ApplicationEnd, EndsEverythingThatStillStands)
{
    for (int round = 0; round < 2; ++round) {
        std::vector<WindowPresentation::End> ends;
        std::vector<bool> animations;
        std::vector<int> posted;
        bool gone = false;
        {
            QGuiApplication application(argc, argv);
            auto window = std::make_unique<QQuickWindow>();
            window->resize(640, 360);
            window->show();
            bool shown = false;
            WindowPresentation::present(
                ViewController::make<Screen>(gone), window.get(),
                {[&] { shown = true; }, [&](WindowPresentation::End end) { ends.push_back(end); }});
            ASSERT_TRUE(MainLoop::shared().runUntil([&] { return shown; }, Seconds(10)));

            forgotten() = ViewController::make<ViewController>();
            forgotten()->loadViewIfNeeded();
            Animation::animate(
                Seconds(60), [] { forgotten()->view().setAlpha(0); },
                [&](bool finished) { animations.push_back(finished); });
            Storyboard::registerScene("End", "None", QUrl("qrc:/none.qml"), [] { return nullptr; });
            Storyboard::storyboardWithName("End")->warmUp("None", [] {});
            MainLoop::shared().post([&] {
                posted.push_back(1);
                MainLoop::shared().post([&] { posted.push_back(2); });
            });
            if (round == 1)
                window.release(); // a window that is never deleted, as in many a host
        }
        EXPECT_EQ(ends, (std::vector{WindowPresentation::End::WindowGone}));
        EXPECT_EQ(animations, (std::vector{false}));
        EXPECT_EQ(posted, (std::vector{1, 2}));
        EXPECT_TRUE(gone);
        EXPECT_FALSE(forgotten()->isViewLoaded());
        forgotten().reset();
    }
}

} // namespace

} // namespace virlo::test
