#include "ViewController.h"
#include "HostWindow.h"
#include "LogCapture.h"
#include "MainLoop.h"
#include "Settle.h"

#include <gtest/gtest.h>

#include <thread>

namespace virlo::test
{

namespace
{

using Log = std::vector<std::string>;

class Part : public ViewController
{
public:
    Part(std::string name, Log& log) : m_name(std::move(name)), m_log(log) {}

    ~Part() override
    {
        m_log.push_back(m_name + (MainLoop::isMainThread() ? " destroyed" : " destroyed elsewhere"));
    }

protected:
    void viewDidLoad() override { note(" loaded"); }

    void viewWillAppear() override { note(" will appear"); }

    void viewDidAppear() override { note(" did appear"); }

    void viewWillDisappear() override { note(" will disappear"); }

    void viewDidDisappear() override { note(" did disappear"); }

private:
    void note(const char* what) { m_log.push_back(m_name + what); }

    std::string m_name;
    Log& m_log;
};

TEST(View, HoldsASharedSubviewUntilItLeaves)
{
    auto first = View::make<View>();
    auto second = View::make<View>();
    std::weak_ptr<View> watch;
    {
        auto subview = View::make<View>();
        watch = subview;
        first->addSubview(subview);
        first->addSubview(subview);
    }
    pumpMainLoop();
    ASSERT_FALSE(watch.expired());
    second->addSubview(watch.lock());
    EXPECT_TRUE(first->subviews().empty());
    pumpMainLoop();
    ASSERT_EQ(second->subviews().size(), 1U);
    watch.lock()->removeFromSuperview();
    pumpMainLoop();
    EXPECT_TRUE(watch.expired());
}

class ViewControllerTest : public testing::Test
{
protected:
    Log take() { return std::exchange(log, {}); }

    Log log;
    std::unique_ptr<HostWindow> window = std::make_unique<HostWindow>();
    std::shared_ptr<Part> parent = ViewController::make<Part>("parent", log);
    std::shared_ptr<Part> child = ViewController::make<Part>("child", log);

    ~ViewControllerTest() override
    {
        window.reset();
        parent.reset();
        child.reset();
        for (int i = 0; i < 3; ++i)
            pumpMainLoop(); // each lets go of what the one before kept
    }
};

TEST_F(ViewControllerTest, PassesAppearingToItsChildren)
{
    parent->addChildViewController(child);
    parent->view().addSubview(child->view());
    take();
    const auto presentation = window->present(parent);
    EXPECT_EQ(take(),
              (Log{"parent will appear", "child will appear", "parent did appear", "child did appear"}));
    EXPECT_EQ(child->presentation(), presentation);
    child->dismissViewController();
    EXPECT_EQ(take(), (Log{"parent will disappear", "child will disappear", "parent did disappear",
                           "child did disappear"}));
}

TEST_F(ViewControllerTest, AChildAppearsWhenItsViewComesOnScreen)
{
    window->present(parent);
    take();
    parent->addChildViewController(child);
    EXPECT_EQ(child->parentViewController(), parent.get());
    EXPECT_EQ(take(), Log{});
    // By way of a container that is filled first and shown then.
    auto container = View::make<View>();
    container->addSubview(child->view());
    EXPECT_EQ(take(), (Log{"child loaded"}));
    parent->view().addSubview(container);
    EXPECT_EQ(take(), (Log{"child will appear", "child did appear"}));
    child->view().removeFromSuperview();
    EXPECT_EQ(take(), (Log{"child will disappear", "child did disappear"}));
    container->addSubview(child->view());
    take();
    child->removeFromParentViewController();
    EXPECT_EQ(take(), (Log{"child will disappear", "child did disappear"}));
    EXPECT_TRUE(parent->childViewControllers().empty());
    EXPECT_EQ(child->parentViewController(), nullptr);
}

TEST_F(ViewControllerTest, IsMadeAndReleasedOnAnyThread)
{
    std::shared_ptr<Part> made;
    std::thread([&] { made = ViewController::make<Part>("made", log); }).join();
    window->present(made);
    EXPECT_EQ(take(), (Log{"made loaded", "made will appear", "made did appear"}));
    made->dismissViewController();
    take();
    std::thread([held = std::move(made)]() mutable { held.reset(); }).join();
    EXPECT_EQ(take(), Log{});
    pumpMainLoop();
    pumpMainLoop();
    EXPECT_EQ(take(), (Log{"made destroyed"}));
}

} // namespace

} // namespace virlo::test
