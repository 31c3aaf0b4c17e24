#include "Storyboard.h"
#include "Button.h"
#include "HostWindow.h"
#include "ImageView.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "LogCapture.h"
#include "Settle.h"
#include "TapRecognizer.h"
#include "TextField.h"
#include "ViewController.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

namespace virlo::test
{

namespace
{

class Panel : public ViewController
{
public:
    using ViewController::outlet;

    int loads = 0;

protected:
    void viewDidLoad() override { ++loads; }
};

QUrl scene(const char* file)
{
    return {QStringLiteral("qrc:/qt/qml/Virlo/UITests/Scenes/") + file};
}

class StoryboardTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const auto make = [] { return ViewController::make<Panel>(); };
        Storyboard::registerScene("Test", "Panel", scene("Panel.qml"), make);
        Storyboard::registerScene("Test", "Broken", scene("Broken.qml"), make);
        Storyboard::registerScene("Test", "NoView", scene("NoView.qml"), make);
        Storyboard::registerScene("Test", "Missing", scene("Missing.qml"), make);
    }

    static std::shared_ptr<Panel> instantiate(const std::string& identifier)
    {
        return std::static_pointer_cast<Panel>(
            Storyboard::storyboardWithName("Test")->instantiateViewControllerWithIdentifier(identifier));
    }
};

TEST_F(StoryboardTest, AMissingOutletFailsTheSceneWithOneLineInTheLog)
{
    for (const char* name : {"shareButton", "titleLabel", "noView", "empty"}) {
        expectLog("The scene Panel.qml has no outlet \"" + std::string(name) + "\" that is a virlo::Button.");
        const auto panel = instantiate("Panel");
        panel->loadViewIfNeeded();
        EXPECT_FALSE(panel->sceneHasFailed());
        EXPECT_EQ(panel->outlet<Button>(name), nullptr);
        EXPECT_TRUE(panel->sceneHasFailed());
        EXPECT_EQ(panel->outlet<Button>("another"), nullptr);
    }
}

TEST_F(StoryboardTest, ASceneThatCannotBeLoadedIsNeitherShownNorSetUp)
{
    HostWindow window;
    expectLog("neverGiven");
    expectLog("NoView.qml: its root is no View");
    expectLog("Missing.qml");
    for (const char* identifier : {"Broken", "NoView", "Missing"}) {
        const auto panel = instantiate(identifier);
        EXPECT_TRUE(panel->view().subviews().empty());
        EXPECT_EQ(panel->outlet<Button>("actionButton"), nullptr);
        EXPECT_EQ(panel->loads, 0);
        std::vector<WindowPresentation::End> ends;
        WindowPresentation::present(panel, &window,
                                    {{}, [&](WindowPresentation::End end) { ends.push_back(end); }});
        EXPECT_TRUE(settle([&] { return !ends.empty(); }));
        EXPECT_EQ(ends, (std::vector{WindowPresentation::End::Refused}));
    }
}

TEST_F(StoryboardTest, WarmingUpEndsOnceForEveryCallerAlsoWhereTheSceneIsLoadedMeanwhile)
{
    expectLog("has no scene \"Nobody\"");
    EXPECT_EQ(Storyboard::storyboardWithName("Elsewhere"), nullptr);
    int done = 0;
    const auto storyboard = Storyboard::storyboardWithName("Test");
    for (const char* identifier : {"Panel", "Panel", "Missing", "Nobody"})
        storyboard->warmUp(identifier, [&] { ++done; });
    Storyboard::registerScene("Test", "Other", scene("Other.qml"),
                              [] { return ViewController::make<Panel>(); });
    storyboard->warmUp("Other", [&] { ++done; });
    EXPECT_EQ(instantiate("Other")->view().backgroundColor(), QColor(Qt::red));
    const auto prepared = instantiate("Panel");
    prepared->prepareView([&] { ++done; });
    EXPECT_EQ(done, 0);
    EXPECT_FALSE(prepared->isViewLoaded());
    EXPECT_TRUE(settle([&] { return done == 6; }));
    EXPECT_TRUE(prepared->isViewLoaded());
    pumpMainLoop();
    EXPECT_EQ(done, 6);
}

TEST_F(StoryboardTest, ASceneIsDrivenByKeysAndDiesWhole)
{
    HostWindow window;
    auto panel = instantiate("Panel");
    panel->loadViewIfNeeded();
    panel->outlet<LayoutConstraint>("actionPositionX")->setConstant(200);
    window.present(panel);
    const QPointer<Button> action = panel->outlet<Button>("actionButton");
    const QPointer<Button> close = panel->outlet<Button>("closeButton");
    const QPointer<Label> title = panel->outlet<Label>("titleLabel");
    EXPECT_TRUE(close->isFocused());
    window.click(Qt::Key_Down);
    EXPECT_TRUE(action->isFocused()) << "the button inside a plain item";
    EXPECT_EQ(action->backgroundColor(), QColor("#d0342c")) << "a binding to the focus";
    window.click(Qt::Key_Right);
    EXPECT_TRUE(close->isFocused()) << "by the guide's column";
    panel->dismissViewController();
    panel.reset();
    pumpMainLoop();
    pumpMainLoop();
    EXPECT_FALSE(action);
    EXPECT_FALSE(close);
    EXPECT_FALSE(title);
}

TEST_F(StoryboardTest, ATextFieldUsesTheKeysThatItCanType)
{
    Storyboard::registerScene("Test", "TextEntry", scene("TextEntry.qml"),
                              [] { return ViewController::make<Panel>(); });
    HostWindow window;
    const auto entry = instantiate("TextEntry");
    int menus = 0;
    const auto menu = std::make_shared<TapRecognizer>([&] { ++menus; });
    menu->setAllowedPressTypes({PressType::Menu});
    entry->view().addGestureRecognizer(menu);
    window.present(entry);
    auto* input = entry->outlet<QQuickItem>("input");
    const auto typed = [&] { return input->property("text").toString().toStdString(); };
    EXPECT_TRUE(input->hasActiveFocus());
    window.type("ab c");
    window.click(Qt::Key_Backspace);
    EXPECT_EQ(typed(), "ab ");
    EXPECT_EQ(menus, 0);
    window.right().forceActiveFocus();
    pumpMainLoop();
    EXPECT_TRUE(input->hasActiveFocus()) << "taken back from the host, to the very item";
    window.click(Qt::Key_Escape);
    EXPECT_EQ(menus, 1);
    window.click(Qt::Key_Down);
    EXPECT_TRUE(entry->outlet<Button>("below")->isFocused());
    window.type("x");
    window.click(Qt::Key_Backspace);
    EXPECT_EQ(typed(), "ab ");
    EXPECT_EQ(menus, 2) << "no text to delete: it is Menu again";
    EXPECT_TRUE(window.right().keys.empty());
    window.click(Qt::Key_Up);
    for (int i = 0; i < 4; ++i)
        window.click(Qt::Key_Backspace);
    EXPECT_EQ(typed(), "");
    EXPECT_EQ(menus, 3) << "and so it is in an empty field";
}

TEST_F(StoryboardTest, ATextFieldHoldsOneLineAndDeletesWholeCharacters)
{
    Storyboard::registerScene("Test", "TextEntry", scene("TextEntry.qml"),
                              [] { return ViewController::make<Panel>(); });
    HostWindow window;
    const auto entry = instantiate("TextEntry");
    window.present(entry);
    auto& field = *entry->outlet<TextField>("field");
    field.setText(QStringLiteral("a\r\nb\u2028c") + QChar(0) + QStringLiteral("d"));
    QGuiApplication::clipboard()->setText(QStringLiteral("x\ny"));
    QTest::keyClick(&window, Qt::Key_End);
    QTest::keyClick(&window, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QStringLiteral("abcdxy"));
    field.setText(QStringLiteral("7👩‍🚀é"));
    for (const char* const left : {"7👩‍🚀", "7", "", ""}) {
        field.deleteBackward();
        EXPECT_EQ(field.text(), QString::fromUtf8(left));
    }
    field.insert(QStringLiteral("ad"));
    field.moveCursor(-1);
    field.insert(QStringLiteral("bc"));
    field.moveCursor(9);
    field.insert(QStringLiteral("e"));
    EXPECT_EQ(field.text(), QStringLiteral("abcde"));
}

} // namespace

} // namespace virlo::test
