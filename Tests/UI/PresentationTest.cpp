#include "ButtonsController.h"
#include "HostWindow.h"
#include "LogCapture.h"
#include "Settle.h"

#include <gtest/gtest.h>

#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <thread>

namespace virlo::test
{

namespace
{

using End = WindowPresentation::End;

class Screen : public ButtonsController
{
public:
    Screen() : ButtonsController({{"A", {100, 100, 200, 80}}, {"B", {100, 600, 200, 80}}}) {}

    std::vector<std::string> life;

protected:
    void viewWillAppear() override { life.emplace_back("will appear"); }

    void viewDidAppear() override { life.emplace_back("did appear"); }

    void viewWillDisappear() override { life.emplace_back("will disappear"); }

    void viewDidDisappear() override { life.emplace_back("did disappear"); }
};

class PresentationTest : public testing::Test
{
protected:
    ~PresentationTest() override
    {
        window.reset();
        pumpMainLoop();
    }

    std::shared_ptr<WindowPresentation> present(QQuickWindow* over, std::shared_ptr<ViewController> what)
    {
        return WindowPresentation::present(
            std::move(what), over, {[this] { ++presented; }, [this](End end) { ends.push_back(end); }});
    }

    std::unique_ptr<HostWindow> window = std::make_unique<HostWindow>();
    std::shared_ptr<Screen> screen = ViewController::make<Screen>();
    int presented = 0;
    std::vector<End> ends;
};

TEST_F(PresentationTest, TellsOfItsLifeInOrder)
{
    const auto presentation = present(window.get(), screen);
    EXPECT_EQ(screen->life, (std::vector<std::string>{"will appear"})) << "nothing is on the display yet";
    ASSERT_TRUE(settle([&] { return presented == 1; }));
    presentation->dismiss();
    presentation->dismiss();
    EXPECT_TRUE(ends.empty()) << "never on the caller's stack";
    pumpMainLoop();
    EXPECT_EQ(screen->life,
              (std::vector<std::string>{"will appear", "did appear", "will disappear", "did disappear"}));
    EXPECT_EQ(ends, (std::vector{End::Dismissed}));
    EXPECT_EQ(presented, 1);
}

TEST_F(PresentationTest, DismissedBeforeItsFirstFrameItNeverAppears)
{
    present(window.get(), screen)->dismiss();
    EXPECT_TRUE(settle([&] { return !ends.empty(); }));
    (void)window->image();
    EXPECT_EQ(screen->life, (std::vector<std::string>{"will appear", "will disappear", "did disappear"}));
    EXPECT_EQ(presented, 0);
}

TEST_F(PresentationTest, KeepsEveryKeyAndPointerFromTheHost)
{
    // What a host might have: a shortcut on the very keys.
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nItem { property int fired: 0\n"
                      "Shortcut { sequences: [\"Return\", \"Right\", \"Esc\"]; onActivated: fired++ } }",
                      QUrl());
    const std::unique_ptr<QQuickItem> shortcuts(qobject_cast<QQuickItem*>(component.create()));
    ASSERT_TRUE(shortcuts) << component.errorString().toStdString();
    shortcuts->setParentItem(window->contentItem());
    window->click(Qt::Key_A);
    EXPECT_EQ(window->left().keys, (std::vector<int>{Qt::Key_A, -Qt::Key_A}));
    window->left().keys.clear();

    const auto presentation = window->present(screen);
    for (const Qt::Key key :
         {Qt::Key_Return, Qt::Key_Right, Qt::Key_Escape, Qt::Key_A, Qt::Key_Tab, Qt::Key_F1})
        window->click(key);
    QTest::mouseClick(window.get(), Qt::LeftButton, Qt::NoModifier, {100, 900});
    EXPECT_TRUE(window->left().keys.empty());
    EXPECT_EQ(window->left().pointerEvents, 0);
    EXPECT_EQ(shortcuts->property("fired").toInt(), 0);

    presentation->dismiss();
    window->click(Qt::Key_A);
    window->click(Qt::Key_Return);
    QTest::mouseClick(window.get(), Qt::LeftButton, Qt::NoModifier, {100, 900});
    EXPECT_EQ(window->left().keys, (std::vector<int>{Qt::Key_A, -Qt::Key_A, -Qt::Key_Return}));
    EXPECT_EQ(shortcuts->property("fired").toInt(), 1);
    EXPECT_EQ(window->left().pointerEvents, 1);
}

TEST_F(PresentationTest, TakesTheFocusAgainFromAHostThatMovesItAndHandsItBackThere)
{
    const auto presentation = window->present(screen);
    window->right().forceActiveFocus();
    window->click(Qt::Key_Down);
    EXPECT_TRUE(window->right().keys.empty());
    EXPECT_EQ(screen->focused(), "B");
    pumpMainLoop();
    EXPECT_FALSE(window->right().hasActiveFocus());
    presentation->dismiss();
    EXPECT_TRUE(window->right().hasActiveFocus());
}

TEST_F(PresentationTest, RefusesWhatCannotStand)
{
    expectLog("there is no screen or no window");
    expectLog("the screen is shown already");
    expectLog("another screen is shown over the window");
    present(nullptr, screen);
    present(window.get(), nullptr);
    const auto standing = present(window.get(), screen);
    HostWindow other;
    present(&other, screen);
    present(window.get(), ViewController::make<Screen>());
    EXPECT_TRUE(settle([&] { return ends.size() == 4 && presented == 1; }));
    EXPECT_EQ(ends, (std::vector(4, End::Refused)));
    EXPECT_TRUE(standing->isPresented());
}

TEST_F(PresentationTest, AScreenAboveAnotherHasEveryKeyUntilItIsDismissed)
{
    class Above : public Screen
    {
    public:
        QString typed;

        void textTyped(const QString& text) override { typed += text; }
    };

    const auto presentation = window->present(screen);
    screen->mayMove = [](const FocusUpdateContext&) { return false; };
    const auto above = ViewController::make<Above>();
    const auto highest = ViewController::make<Screen>();
    window->press(Qt::Key_Return); // held: the screen below must not fire at its release
    int fired = 0;
    screen->button("A")->setPrimaryAction([&] { ++fired; });
    screen->presentViewController(above);
    EXPECT_FALSE(screen->button("A")->isHighlighted());
    window->release(Qt::Key_Return);
    EXPECT_EQ(fired, 0);
    window->click(Qt::Key_Down);
    EXPECT_EQ(above->focused(), "B") << "whatever the screen below allows";
    EXPECT_EQ(screen->focused(), "A");
    window->type("hi");
    EXPECT_EQ(above->typed, "hi");
    above->presentViewController(highest);
    highest->button("A")->setPrimaryAction([&] { above->dismissViewController(); });
    window->click(Qt::Key_Return);
    EXPECT_EQ(highest->life.back(), "did disappear");
    EXPECT_EQ(above->life,
              (std::vector<std::string>{"will appear", "did appear", "will disappear", "did disappear"}));
    EXPECT_EQ(screen->life, (std::vector<std::string>{"will appear", "did appear"}));
    EXPECT_FALSE(highest->presentation());
    EXPECT_TRUE(screen->button("A")->hasActiveFocus());
    window->click(Qt::Key_Return);
    EXPECT_EQ(fired, 1);
    screen->presentViewController(above); // again, and ended with everything
    presentation->dismiss();
    EXPECT_EQ(above->life.back(), "did disappear");
    expectLog("Cannot present above a screen");
    screen->presentViewController(above);
    EXPECT_TRUE(window->left().hasActiveFocus());
}

TEST_F(PresentationTest, MayBeStartedAndEndedFromAnyThread)
{
    std::weak_ptr<Screen> watch = screen;
    std::shared_ptr<WindowPresentation> presentation;
    std::thread([&] { presentation = present(window.get(), std::move(screen)); }).join();
    ASSERT_TRUE(settle([&] { return presented == 1; }));
    std::thread([&] { std::exchange(presentation, nullptr)->dismiss(); }).join();
    EXPECT_TRUE(settle([&] { return ends.size() == 1 && watch.expired(); }));
}

TEST_F(PresentationTest, ScalesTheCanvasWithBarsWhereTheShapeDiffers)
{
    HostWindow odd({1280, 800});
    screen->view().setBackgroundColor(Qt::red);
    auto spill = View::make<View>();
    spill->setBackgroundColor(Qt::green);
    spill->setFrame({900, -300, 100, 400});
    screen->view().addSubview(spill);
    odd.present(screen);
    const QImage image = odd.image();
    EXPECT_EQ(image.pixelColor(640, 20), QColor(Qt::black))
        << "the bar, also where a view reaches outside the canvas";
    EXPECT_EQ(image.pixelColor(640, 60), QColor(Qt::green));
    EXPECT_EQ(image.pixelColor(1270, 700), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(640, 780), QColor(Qt::black));
    odd.resize(960, 540);
    ASSERT_TRUE(settle([&] { return odd.contentItem()->width() == 960; }));
    EXPECT_EQ(odd.image().pixelColor(955, 535), QColor(Qt::red));
}

} // namespace

} // namespace virlo::test
