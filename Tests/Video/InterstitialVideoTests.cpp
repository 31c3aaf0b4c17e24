#include "VIRLOAdInterstitialViewController.h"
#include "VIRLOButton.h"
#include "VIRLOFormViewController.h"
#include "VideoTest.h"

namespace virlo::test
{

namespace
{

/// A video over an app's page, with the download button that lies over both.
class InterstitialVideo : public FakeVideoTest
{
protected:
    using Page = std::shared_ptr<VIRLOAdInterstitialViewController>;

    [[nodiscard]] Page shownPage(const JSON& button)
    {
        JSON one = imageAd({{"a"}});
        one["type"] = "interstitial";
        one["ads"][0]["actionButton"].update(button);
        const auto made = make(one);
        EXPECT_TRUE(made && !made->error);
        auto page = std::dynamic_pointer_cast<VIRLOAdInterstitialViewController>(made->screen);
        ready("a");
        show(page);
        animations.advance(Seconds(0.5));
        static_cast<void>(pings());
        return page;
    }

    [[nodiscard]] static View* focused(const Page& page)
    {
        const auto views = focusedViews(page->view());
        EXPECT_EQ(views.size(), 1U);
        return views.empty() ? nullptr : views.front();
    }

    [[nodiscard]] static View* downloadButton(const Page& page)
    {
        return page->view().property("actionButton").value<View*>();
    }
};

TEST_F(InterstitialVideo, HasAButtonWhereTheAdSaysAndHandsTheFocusToThePageAtItsEnd)
{
    const Page page = shownPage({{"xPosition", 1300}, {"yPosition", 840}});
    auto* const button = qobject_cast<VIRLOButton*>(focused(page));
    ASSERT_TRUE(button && button != downloadButton(page));
    EXPECT_EQ(button->frame(), QRectF(1300, 840, 460, 90));
    EXPECT_EQ(button->title(), "Play now");
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right})
        click(key);
    EXPECT_EQ(focused(page), button) << "what the video covers takes no focus";
    end("a");
    animations.advance(Seconds(0.5));
    EXPECT_TRUE(page->childViewControllers().empty());
    EXPECT_EQ(focused(page), downloadButton(page));
    EXPECT_FALSE(isOver());
}

TEST_F(InterstitialVideo, OpensTheItemByItsButton)
{
    const Page page = shownPage(JSON::object());
    click(Qt::Key_Return);
    EXPECT_TRUE(awaitRequests("/click/" + identifier()));
    EXPECT_TRUE(awaitRequests("/store/" + identifier()));
}

TEST_F(InterstitialVideo, PausesUnderTheFormOfItsItemAndGoesOnAfterIt)
{
    const Page page = shownPage({{"actionType", "CLICK_TO_EMAIL"}});
    auto* const button = focused(page);
    click(Qt::Key_Return);
    animations.advance(Seconds(1));
    ASSERT_TRUE(page->formViewController());
    EXPECT_FALSE(engine.at(clip("a")).isPlaying);
    click(Qt::Key_MediaTogglePlayPause);
    EXPECT_EQ(pings(), (Pings{"a pause"})) << "the form has the keys";
    EXPECT_EQ(focused(page)->accessibleName(), "Enter E-mail Address");
    click(Qt::Key_Escape);
    animations.advance(Seconds(1));
    EXPECT_TRUE(engine.at(clip("a")).isPlaying);
    EXPECT_EQ(pings(), (Pings{"a resume"}));
    EXPECT_EQ(focused(page), button);
}

TEST_F(InterstitialVideo, IsLeftByMenuFirstAndKeepsItsButtonInSight)
{
    const Page page = shownPage({{"xPosition", 100000}, {"yPosition", -5}});
    EXPECT_EQ(focused(page)->frame(), QRectF(1400, 60, 460, 90));
    click(Qt::Key_Escape);
    EXPECT_EQ(pings(), (Pings{"a close"}));
    EXPECT_EQ(focused(page), downloadButton(page));
    click(Qt::Key_Escape);
    EXPECT_TRUE(isOver());
}

} // namespace

} // namespace virlo::test
