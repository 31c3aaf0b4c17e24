#include "FormTest.h"

#include "Button.h"
#include "Footprint.h"
#include "KeyboardKey.h"
#include "Label.h"
#include "LogCapture.h"
#include "Preferences.h"
#include "Settle.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOConstans.h"
#include "VIRLOFormDataSubmitter.h"
#include "VIRLOFormMode.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>

#include <array>
#include <random>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* apology = "Sorry but we can not connect with our server. Please try again.";

// Texts

struct Text {
    const char* name;
    const char* actionType;
    QString text;
    bool accepted;
};

class FormTexts : public testing::TestWithParam<Text>
{
};

TEST_P(FormTexts, AreAcceptedOrNot)
{
    EXPECT_EQ(VIRLOFormMode::ofActionType(GetParam().actionType)->accepts(GetParam().text),
              GetParam().accepted);
}

INSTANTIATE_TEST_SUITE_P(Rows, FormTexts,
                         testing::Values(Text{"TwoLetters", "CLICK_TO_EMAIL", "Name+a_%b.c-d@Mail.Example.CO",
                                              true},
                                         Text{"FiveLetters", "CLICK_TO_EMAIL", "name@example.abcde", false},
                                         Text{"TwoAddresses", "CLICK_TO_EMAIL", "a@b.com,c@d.com", false},
                                         Text{"Accent", "CLICK_TO_EMAIL", "é@b.com", false},
                                         Text{"Nothing", "CLICK_TO_EMAIL", "", false},
                                         Text{"International", "CLICK_TO_CALL", "+1 (555) 123-4567", true},
                                         Text{"FiveDigits", "CLICK_TO_SMS", "12345", false},
                                         Text{"TwoPlus", "CLICK_TO_CALL", "++123456", false},
                                         Text{"ArabicDigits", "CLICK_TO_CALL", "٠١٢٣٤٥٦٧", false}),
                         [](const auto& row) { return row.param.name; });

TEST(FormText, TakesUnderAMillisecondWhateverItIs)
{
    const auto repeated = [](const char* piece, int length) {
        return QString::fromUtf8(piece).repeated(length).left(length);
    };
    for (const char* const piece : {"a", "a.", "a@", "a@a.", "@", ".", "+", "1 ", "😀", "ש", "-.", "\n"}) {
        for (const int length : {10'000, 32'767}) {
            const QString text = repeated(piece, length);
            for (const QString& whole : {text, "a@" + text, text + "!", "a@" + text + ".co!"}) {
                for (const char* const type : {"CLICK_TO_EMAIL", "CLICK_TO_CALL"}) {
                    qint64 least = 1'000'000'000;
                    for (int round = 0; round < 5; ++round) {
                        QElapsedTimer timer;
                        timer.start();
                        static_cast<void>(VIRLOFormMode::ofActionType(type)->accepts(whole));
                        least = std::min(least, timer.nsecsElapsed());
                    }
                    EXPECT_LT(least, 1'000'000) << piece << ' ' << length;
                }
            }
        }
    }
}

TEST(FormText, PhoneNumbersAreFormattedByTheirDigits)
{
    for (const auto& [typed, shown] : {std::pair("1234567890", "(123) 456-7890"),
                                       {"11234567890", "1(123) 456-7890"},
                                       {"12345678", "1) 234-5678"},
                                       {"1234567", "123-4567"},
                                       {"12345", "1-2345"},
                                       {"1234", "1234"},
                                       {"+1 (555) 12٣-4", "155-5124"},
                                       {"()-", ""}})
        EXPECT_EQ(VIRLOFormViewController::formattedPhoneNumberFromString(typed), QString(shown)) << typed;
}

// Sending

TEST_F(FormTest, DataTypedByRemoteIsCheckedSentAndConfirmed)
{
    open("CLICK_TO_EMAIL");
    EXPECT_EQ(focus(), "Enter E-mail Address");
    click(Qt::Key_Return);
    typeByRemote("jo.7");
    shoot("form-keyboard");
    pick("Done");
    EXPECT_EQ(alert(), "Please enter a valid e-mail address.");
    EXPECT_EQ(focus(), "Enter E-mail Address");
    click(Qt::Key_Down);
    EXPECT_EQ(focus(), "Enter E-mail Address") << "there is nothing to send yet";
    shoot("form-alert");
    click(Qt::Key_Return);
    pick("Delete");
    pick("x");
    pick("@yahoo.com");
    pick("@gmail.com");
    pick("Done");
    EXPECT_EQ(alert(), "");
    EXPECT_EQ(focus(), "Send");
    shoot("form-ready");
    click(Qt::Key_Return);
    animations.advance(Seconds(0.3));
    ASSERT_TRUE(awaitPage());
    EXPECT_THAT(bodies("/store/"), ElementsAre(R"({"email":"jo.x@gmail.com"})"));
    EXPECT_THAT(bodies("/click/"), ElementsAre(R"({"email":"jo.x@gmail.com"})"));
    EXPECT_EQ(focus(), "Continue");
    shoot("form-submitted");
    click(Qt::Key_Up);
    EXPECT_EQ(focus(), "Continue");
    click(Qt::Key_Return);
    EXPECT_TRUE(settle([&] { return window.left().hasActiveFocus(); }));
    EXPECT_FALSE(screen->formViewController());
    EXPECT_EQ(Preferences::standard().string(VIRLOAdFrameworkPreferencesEmailAddress), "jo.x@gmail.com");
}

TEST_F(FormTest, ARealKeyboardTypesAtOnceAndThePhoneNumberIsSentAsFormatted)
{
    open("CLICK_TO_SMS");
    window.type("555123");
    EXPECT_TRUE(sendButton().isEnabled());
    window.type("4567");
    click(Qt::Key_Return);
    EXPECT_EQ(field().text(), "(555) 123-4567");
    EXPECT_EQ(focus(), "Send");
    click(Qt::Key_Up);
    click(Qt::Key_Return); // the on-screen keyboard
    window.type("8");
    EXPECT_EQ(field().text(), "(555) 123-45678") << "beside the on-screen one, too";
    click(Qt::Key_Escape);
    EXPECT_EQ(field().text(), "5(551) 234-5678");
    EXPECT_EQ(focus(), "Enter Phone Number");
    click(Qt::Key_Down);
    click(Qt::Key_Return);
    ASSERT_TRUE(awaitPage());
    EXPECT_THAT(bodies("/store/"), ElementsAre(R"({"phone":"5(551) 234-5678"})"));
    click(Qt::Key_Return);
    open("CLICK_TO_CALL");
    EXPECT_EQ(field().text(), "5(551) 234-5678") << "remembered";
    EXPECT_TRUE(sendButton().isEnabled());
    for (int i = 0; i < 20; ++i)
        window.click(Qt::Key_Backspace);
    EXPECT_FALSE(screen->formViewController() && !fadesOut()) << "in the empty field it is Menu";
}

TEST_F(FormTest, AShortNumberStaysRefusedThoughItsFormIsLongEnough)
{
    open("CLICK_TO_CALL");
    window.type("12345");
    click(Qt::Key_Return);
    EXPECT_EQ(field().text(), "1-2345");
    EXPECT_EQ(alert(), "Please enter a valid phone number.");
    EXPECT_FALSE(sendButton().isEnabled());
    EXPECT_EQ(focus(), "Enter Phone Number");
}

TEST_F(FormTest, AFailedSubmissionIsSentAgainWhole)
{
    expectLog("Cannot submit contact data: ");
    server().setFault({.path = "/store/*", .status = 500, .times = 1});
    openWith("CLICK_TO_EMAIL", "a@b.com");
    click(Qt::Key_Down);
    click(Qt::Key_Return);
    ASSERT_TRUE(settle([&] { return alert() == apology && focus() == "Send"; }));
    shoot("form-failed");
    EXPECT_THAT(bodies("/click/"), IsEmpty());
    click(Qt::Key_Return);
    ASSERT_TRUE(awaitPage());
    EXPECT_EQ(bodies("/store/").size(), 2U);
    EXPECT_EQ(bodies("/click/").size(), 1U);
}

TEST_F(FormTest, OnlyTheClickOfAcceptedDataIsRepeated)
{
    expectLog("Cannot submit contact data: ");
    server().setFault({.path = "/click/*", .status = 500, .times = 2});
    openWith("CLICK_TO_EMAIL", "a@b.com");
    click(Qt::Key_Down);
    for (const std::size_t sent : {1U, 2U}) {
        click(Qt::Key_Return);
        ASSERT_TRUE(settle([&] { return bodies("/click/").size() == sent && focus() == "Send"; }));
    }
    click(Qt::Key_Return);
    ASSERT_TRUE(awaitPage());
    EXPECT_THAT(bodies("/store/"), ElementsAre(R"({"email":"a@b.com"})"));
    EXPECT_EQ(bodies("/click/").size(), 3U);
}

TEST_F(FormTest, OtherDataIsSubmittedAndLeavesTheFormerToBeResent)
{
    const auto submitter = VIRLOFormDataSubmitter::initWithApi(api);
    const std::shared_ptr item = VIRLOAdItem::initWithDictionary(ad()["ads"][0]);
    const auto send = [&](const char* address) {
        std::atomic<int> answers{0};
        std::atomic<bool> failed{false};
        submitter->submitDataForItemWithCompletion({{"email", address}}, item,
                                                   [&](const OptionalError& error) {
                                                       failed = error.has_value();
                                                       ++answers;
                                                   });
        EXPECT_TRUE(settle([&] { return answers > 0; }));
        return !failed;
    };
    server().setFault({.path = "/click/*", .status = 500, .times = 1});
    EXPECT_FALSE(send("a@b.com"));
    EXPECT_TRUE(send("c@d.com"));
    EXPECT_EQ(submitter->dataToResend(), (JSON{{"email", "a@b.com"}}));
    EXPECT_TRUE(send("a@b.com"));
    EXPECT_TRUE(submitter->dataToResend().is_null());
    EXPECT_THAT(bodies("/store/"), ElementsAre(R"({"email":"a@b.com"})", R"({"email":"c@d.com"})"));
    EXPECT_EQ(bodies("/click/").size(), 3U);
}

TEST_F(FormTest, SendPressedTenTimesSendsOnceAlsoDuringTheCrossFade)
{
    openWith("CLICK_TO_EMAIL", "a@b.com");
    click(Qt::Key_Down);
    for (int i = 0; i < 10; ++i)
        window.click(Qt::Key_Return);
    ASSERT_TRUE(settle([&] { return focus() == "Send" || focus() == "Continue"; }));
    for (int i = 0; i < 10; ++i)
        window.click(Qt::Key_Return);
    ASSERT_TRUE(awaitPage());
    settleAll();
    EXPECT_EQ(bodies("/store/").size(), 1U);
    EXPECT_EQ(bodies("/click/").size(), 1U);
}

TEST_F(FormTest, MenuLeavesAFormWhoseServerNeverAnswersAndNothingIsLeft)
{
    server().setFault({.path = "/store/*", .neverResponds = true});
    openWith("CLICK_TO_EMAIL", "a@b.com");
    const std::weak_ptr form = screen->formViewController();
    click(Qt::Key_Down);
    click(Qt::Key_Return);
    EXPECT_EQ(focus(), "Loading");
    ASSERT_TRUE(settle([&] { return !bodies("/store/").empty(); }));
    shoot("form-sending");
    click(Qt::Key_Escape);
    animations.advance(Seconds(1));
    EXPECT_EQ(focus(), "Ask");
    EXPECT_TRUE(settle([&] { return form.expired(); }));
    click(Qt::Key_Escape);
    EXPECT_TRUE(window.left().hasActiveFocus());
    server().reset();
}

TEST_F(FormTest, AServerObjectThatIsGoneEndsTheSending)
{
    openWith("CLICK_TO_EMAIL", "a@b.com");
    ASSERT_TRUE(awaitRequests("/impression/" + identifier()));
    api.reset();
    click(Qt::Key_Down);
    click(Qt::Key_Return);
    EXPECT_TRUE(settle([&] { return focus() == "Send"; }));
}

// The screen

TEST_F(FormTest, MenuClosesTheKeyboardThenTheFormThenTheAd)
{
    open("CLICK_TO_EMAIL");
    click(Qt::Key_Return);
    click(Qt::Key_Escape);
    EXPECT_EQ(focus(), "Enter E-mail Address");
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left, Qt::Key_Right, Qt::Key_Down})
        click(key);
    EXPECT_EQ(focus(), "Enter E-mail Address");
    const auto form = screen->formViewController();
    window.click(Qt::Key_Escape);
    for (int i = 0; i < 4; ++i) {
        window.click(Qt::Key_Return); // no second form during the fade
        animations.advance(Seconds(0.1));
        EXPECT_EQ(screen->formViewController(), form);
    }
    animations.advance(Seconds(1));
    EXPECT_FALSE(screen->formViewController());
    EXPECT_EQ(focus(), "Ask");
    click(Qt::Key_Escape);
    EXPECT_TRUE(window.left().hasActiveFocus());
}

TEST_F(FormTest, AnInputMethodThatShowsNothingLeavesTheViewerTheKeyboard)
{
    qputenv("QT_IM_MODULE", "missing");
    open("CLICK_TO_EMAIL");
    click(Qt::Key_Return);
    EXPECT_EQ(focus(), "Enter E-mail Address");
    clock.advance(Seconds(0.6));
    EXPECT_EQ(focus(), "g");
    qunsetenv("QT_IM_MODULE");
}

TEST_F(FormTest, SelectPressedAgainAndAgainOpensOneForm)
{
    screen = shown(ad(form("CLICK_TO_EMAIL")));
    for (int i = 0; i < 5; ++i) {
        window.click(Qt::Key_Return);
        EXPECT_EQ(screen->childViewControllers().size(), 1U);
    }
}

TEST_F(FormTest, DismissedWithItsKeyboardItIsGoneWhenTheAdIsShownAgain)
{
    open("CLICK_TO_EMAIL");
    click(Qt::Key_Return);
    const std::weak_ptr form = screen->formViewController();
    VIRLOAdPresenter::dismiss(screen);
    EXPECT_TRUE(settle([&] { return form.expired(); }));
    present(screen);
    EXPECT_EQ(focus(), "Ask");
}

struct Extreme {
    const char* name;
    QString text;
};

class FormExtremes : public FormTest, public testing::WithParamInterface<Extreme>
{
};

TEST_P(FormExtremes, KeepTheLayoutAndAreNotSent)
{
    const std::string text = GetParam().text.toStdString();
    Preferences::standard().setString(VIRLOAdFrameworkPreferencesEmailAddress, text);
    open("CLICK_TO_EMAIL", {{"description", text}});
    const QRectF before = field().mapRectToItem(&screen->view(), field().bounds());
    shoot(std::string("form-") + GetParam().name);
    screen->formViewController()->sendData();
    EXPECT_EQ(alert(), "Please enter a valid e-mail address.");
    click(Qt::Key_Return);
    pick("a");
    shoot(std::string("form-typed-") + GetParam().name);
    pick("Clear");
    EXPECT_EQ(field().text(), "");
    pick("Done");
    animations.advance(Seconds(1));
    EXPECT_EQ(field().mapRectToItem(&screen->view(), field().bounds()), before);
    EXPECT_THAT(bodies("/store/"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FormExtremes,
    testing::Values(Extreme{"Long", QStringLiteral("wide open fields ").repeated(600)},
                    Extreme{"OneWord", QStringLiteral("w").repeated(10'000)},
                    Extreme{"Emoji", QStringLiteral("👩‍🚀🇩🇪😀").repeated(30)},
                    Extreme{"RightToLeft", QStringLiteral("اترك لنا عنوانك ").repeated(20)},
                    Extreme{"Chinese", QStringLiteral("请留下您的电子邮件地址。").repeated(12)}),
    [](const auto& row) { return row.param.name; });

// Endurance

TEST_F(FormTest, RandomKeysLeaveOneFocusedAndMenuAlwaysLeaves)
{
    constexpr std::array keys{Qt::Key_Up,    Qt::Key_Down,   Qt::Key_Left, Qt::Key_Right,
                              Qt::Key_Right, Qt::Key_Return, Qt::Key_A,    Qt::Key_Backspace,
                              Qt::Key_Tab,   Qt::Key_Space,  Qt::Key_1,    Qt::Key_Escape};
    allowLog("Cannot submit contact data: ");
    server().setFault({.path = "/store/*", .status = 500, .times = 30});
    std::mt19937 random(19700101);
    const auto upTo = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    for (int done = 0, total = soaks() ? 100'000 : 1200; done < total;) {
        openWith(upTo(1) == 0 ? "CLICK_TO_EMAIL" : "CLICK_TO_CALL", upTo(1) == 0 ? "a@b.com" : "1234567");
        for (; done < total && !window.left().hasActiveFocus() && upTo(300) > 0; ++done) {
            window.click(keys[upTo(keys.size() - (upTo(3) == 0 ? 1 : 2))]);
            if (upTo(5) == 0)
                animations.advance(Seconds(0.1 * static_cast<double>(upTo(9))));
            if (!window.left().hasActiveFocus()) {
                ASSERT_NE(focus(), "several") << done;
                ASSERT_NE(focus(), "none") << done;
            }
        }
        // At most the keyboard, the form and the ad.
        for (int i = 0; i < 3; ++i) {
            click(Qt::Key_Escape);
            animations.advance(Seconds(1));
        }
        ASSERT_TRUE(window.left().hasActiveFocus()) << done;
        settleAll();
    }
}

TEST_F(FormTest, OpenedTypedIntoAndClosedAgainAndAgainItLeavesNothing)
{
    screen = shown(ad(form("CLICK_TO_EMAIL")));
    const auto rounds = [&](int count) {
        for (int i = 0; i < count; ++i) {
            click(Qt::Key_Return);
            animations.advance(Seconds(1));
            click(Qt::Key_Return);
            pick("a");
            click(Qt::Key_Escape);
            click(Qt::Key_Escape);
            animations.advance(Seconds(1));
            ASSERT_EQ(focus(), "Ask");
        }
        settleAll();
        static_cast<void>(window.image());
    };
    const int count = soaks() ? 1000 : 40;
    // A form with its keyboard takes over 300 KiB.
    expectNoGrowth(rounds, 20, count, 2048 + 2 * count);
}

} // namespace

} // namespace virlo::test
