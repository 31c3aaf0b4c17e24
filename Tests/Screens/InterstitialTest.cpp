#include "ScreenTest.h"

#include "Button.h"
#include "Footprint.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "LogCapture.h"
#include "Settle.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdInterstitialScreenshots.h"
#include "VIRLOAdInterstitialViewController.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOCarousel.h"
#include "VIRLOFrameworkImages.h"

namespace virlo::test
{

namespace
{

class Interstitial : public ScreenTest
{
protected:
    using Page = std::shared_ptr<VIRLOAdInterstitialViewController>;

    [[nodiscard]] JSON pageAd(int screenshots, const JSON& item = {}, const JSON& button = {},
                              QSize size = {1920, 1080})
    {
        JSON one = ad(item, button);
        JSON urls = JSON::array();
        for (int i = 0; i < screenshots; ++i) {
            const std::string path = "/shots/" + identifier() + "/" + std::to_string(i);
            urls.push_back(url(path));
            serve(path, encoded(screenshot(i, size), "JPEG"));
        }
        one["type"] = "interstitial";
        one["ads"][0]["screenshots"] = urls;
        serve("/images/" + identifier(), imageFile(QColor(120, 60, 160), {400, 300}));
        return one;
    }

    /// Each in a colour of its own.
    [[nodiscard]] static QImage screenshot(int index, QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(index * 47 % 360, 140, 190));
        return image;
    }

    [[nodiscard]] Page readyPage(const JSON& ad)
    {
        return std::dynamic_pointer_cast<VIRLOAdInterstitialViewController>(readyScreen(ad));
    }

    [[nodiscard]] Page shownPage(const JSON& ad)
    {
        const Page page = readyPage(ad);
        present(page, [&] { return !focusedViews(page->view()).empty(); });
        animations.advance(Seconds(0.5));
        settleAll();
        return page;
    }

    [[nodiscard]] static Button& actionButton(const Page& page)
    {
        return outlet<Button>(page, "actionButton");
    }

    /// The indices of the elements that show an image, after a look that each shows its own.
    [[nodiscard]] static std::vector<std::int64_t> shownScreenshots(const Page& page)
    {
        std::vector<std::int64_t> shown;
        const auto elements = outlet<VIRLOCarousel>(page, "carousel").elements();
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const auto* const view = qobject_cast<ImageView*>(elements[i]->subviews().back());
            if (!view->hasImage())
                continue;
            shown.push_back(static_cast<std::int64_t>(i));
            const QImage image = view->image()->qImage();
            EXPECT_NEAR(image.pixelColor(30, 30).hsvHue(), static_cast<int>(i) * 47 % 360, 4)
                << "element " << i;
        }
        return shown;
    }

    template <typename T>
    [[nodiscard]] static T& outlet(const Page& page, const char* name)
    {
        return *page->view().property(name).template value<T*>();
    }
};

TEST_F(Interstitial, ShowsTheItemAndOpensItBySelect)
{
    const Page page =
        shownPage(pageAd(5, {{"price", "Free"}, {"reviews", 1234}, {"description", "Forty isles."}}));
    EXPECT_EQ(outlet<Label>(page, "titleLabel").text(), "Ember Trail");
    EXPECT_EQ(outlet<Label>(page, "actionLabel").text(), "Free | Play now");
    EXPECT_EQ(outlet<Label>(page, "ratingLabel").text(), "1234 Ratings");
    EXPECT_EQ(outlet<Label>(page, "descriptionLabel").text(), "Forty isles.");
    EXPECT_TRUE(outlet<ImageView>(page, "coverImageView").hasImage());
    EXPECT_TRUE(actionButton(page).isFocused());
    EXPECT_EQ(actionButton(page).title(), "Play now");
    EXPECT_EQ(actionButton(page).transform(), AffineTransform::scale(1.1F, 1.1F));
    click(Qt::Key_Return);
    EXPECT_TRUE(awaitRequests("/click/" + identifier()));
    EXPECT_TRUE(awaitRequests("/store/" + identifier()));
}

struct Rating {
    const char* name;
    float rating;
    const char* stars; ///< f for a full, h for a half one
};

class InterstitialStars : public Interstitial, public testing::WithParamInterface<Rating>
{
};

TEST_P(InterstitialStars, AreFilledToTheHalf)
{
    const Page page = readyPage(pageAd(0, {{"rating", GetParam().rating}}));
    std::string stars;
    for (int i = 0; i < 5; ++i) {
        const auto image = qobject_cast<ImageView*>(page->view().viewWithTag(980001 + i))->image();
        if (image)
            stars += image == VIRLOFrameworkImages::imageNamed("Star34-full.png") ? 'f' : 'h';
    }
    EXPECT_EQ(stars, GetParam().stars);
}

INSTANTIATE_TEST_SUITE_P(Ratings, InterstitialStars,
                         testing::Values(Rating{"None", 0, ""}, Rating{"ALittle", 0.1F, "h"},
                                         Rating{"AHalf", 3.5F, "fffh"}, Rating{"OverAHalf", 3.6F, "ffff"},
                                         Rating{"FourAndAHalf", 4.5F, "ffffh"}, Rating{"Full", 5, "fffff"},
                                         Rating{"TooMany", 1e9F, "fffff"}, Rating{"Negative", -3, ""}),
                         [](const auto& row) { return row.param.name; });

struct Texts {
    const char* name;
    const char* piece; ///< repeated
    int pieces;
};

class InterstitialTexts : public Interstitial, public testing::WithParamInterface<Texts>
{
};

TEST_P(InterstitialTexts, StayInTheirPlaces)
{
    std::string text;
    for (int i = 0; i < GetParam().pieces; ++i)
        text += GetParam().piece;
    const Page page = shownPage(
        pageAd(5, {{"title", text}, {"price", text}, {"description", text}, {"reviews", 2147483647}},
               {{"text", text}}));
    shoot(std::string("interstitial-") + GetParam().name);
    const auto rectOf = [&](const QQuickItem& item) {
        return item.mapRectToItem(&page->view(), QRectF(0, 0, item.width(), item.height()));
    };
    std::vector<QRectF> rects{rectOf(actionButton(page)), rectOf(outlet<VIRLOCarousel>(page, "carousel"))};
    for (const char* const name : {"titleLabel", "actionLabel", "ratingLabel", "descriptionLabel"}) {
        auto& label = outlet<Label>(page, name);
        const QSizeF drawn(label.childItems().front()->property("contentWidth").toDouble(),
                           label.childItems().front()->property("contentHeight").toDouble());
        EXPECT_LE(drawn.width(), label.width() + 1) << name;
        EXPECT_LE(drawn.height(), label.height() + 1) << name;
        rects.push_back(rectOf(label));
        EXPECT_TRUE(QRectF(60, 54, 1800, 960).contains(rects.back())) << name;
    }
    for (std::size_t a = 0; a < rects.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b)
            EXPECT_FALSE(rects[a].intersects(rects[b])) << a << " and " << b;
    }
}

INSTANTIATE_TEST_SUITE_P(Extremes, InterstitialTexts,
                         testing::Values(Texts{"Short", "A", 1},
                                         Texts{"Words", "Forty lantern isles, one boat. ", 65},
                                         Texts{"OneWord", "Lanternislelanternisle", 90},
                                         Texts{"Lines", "Isle\n", 400},
                                         Texts{"RightToLeft", "جزر الفوانيس المضيئة ", 60},
                                         Texts{"Chinese", "灯笼群岛，四十座岛屿。", 90}),
                         [](const auto& row) { return row.param.name; });

TEST_F(Interstitial, WithFourScreenshotsThereIsNoCarouselAndItIsLogged)
{
    VIRLOAdFrameworkLogger::setDebugLevel(3);
    expectLog("Carousel exception: VIRLOCarousel Minimum expected number of elements is 5. Given 4");
    const Page page = shownPage(pageAd(4));
    EXPECT_TRUE(outlet<VIRLOCarousel>(page, "carousel").isEmpty());
    click(Qt::Key_Down);
    EXPECT_TRUE(actionButton(page).isFocused());
    VIRLOAdFrameworkLogger::setDebugLevel(2);
}

TEST_F(Interstitial, HoldsTheScreenshotsAroundTheFocusAlone)
{
    const Page page = shownPage(pageAd(60));
    window.click(Qt::Key_Down);
    for (int move = 0; move < 70; ++move) {
        window.click(Qt::Key_Right);
        animations.advance(Seconds(0.04));
        ASSERT_LE(shownScreenshots(page).size(), VIRLOAdInterstitialScreenshots::mostHeld);
    }
    animations.advance(Seconds(2));
    settleAll();
    const auto middle = outlet<VIRLOCarousel>(page, "carousel").focusedElement();
    std::vector<std::int64_t> expected;
    for (std::int64_t i = middle - 2; i <= middle + 2; ++i)
        expected.push_back((i + 60) % 60);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(shownScreenshots(page), expected);
}

struct Shape {
    const char* name;
    QSize original;
    QSize held;
};

class InterstitialShapes : public Interstitial, public testing::WithParamInterface<Shape>
{
};

TEST_P(InterstitialShapes, AreHeldAsLargeAsTheyAreSeen)
{
    const Page page = readyPage(pageAd(5, {}, {}, GetParam().original));
    ASSERT_TRUE(settle([&] { return shownScreenshots(page).size() == 5; }));
    const auto element = outlet<VIRLOCarousel>(page, "carousel").elements().front();
    EXPECT_EQ(qobject_cast<ImageView*>(element->subviews().back())->image()->qImage().size(),
              GetParam().held);
}

INSTANTIATE_TEST_SUITE_P(Originals, InterstitialShapes,
                         testing::Values(Shape{"AsTheScreen", {1920, 1080}, {1400, 618}},
                                         Shape{"AsAnElement", {1400, 515}, {1400, 515}},
                                         Shape{"Wide", {2472, 618}, {1680, 618}},
                                         Shape{"TallAndSmall", {300, 900}, {300, 133}}),
                         [](const auto& row) { return row.param.name; });

TEST_F(Interstitial, AScreenshotThatFailsStaysEmptyAndALateOneComes)
{
    const JSON ad = pageAd(6);
    // The first download of each fails in the preload; the second is asked for by the carousel.
    server().setFault({.path = "/shots/" + identifier() + "/1", .status = 404, .body = "none"});
    server().setFault({.path = "/shots/" + identifier() + "/3", .status = 500, .body = "soon", .times = 1});
    const Page page = shownPage(ad);
    ASSERT_TRUE(settle([&] { return shownScreenshots(page).size() == 4; }));
    EXPECT_EQ(shownScreenshots(page), (std::vector<std::int64_t>{0, 2, 3, 4}));
    EXPECT_EQ(requests("/shots/" + identifier() + "/1"), 2);
}

TEST_F(Interstitial, ReportsItsImpressionOnceHoweverOftenItAppears)
{
    const Page page = shownPage(pageAd(5));
    ASSERT_TRUE(settle([&] { return page->adItem()->impressionMarked(); }));
    click(Qt::Key_Escape);
    VIRLOAdPresenter::present(page, &window);
    animations.advance(Seconds(0.5));
    click(Qt::Key_Escape);
    settleAll();
    EXPECT_EQ(requests("/impression/" + identifier()), 1);
}

TEST_F(Interstitial, TheDownloadButtonShakesEveryFourSecondsWhileItIsShown)
{
    const Page page = shownPage(pageAd(5));
    const auto left = [&] { return actionButton(page).mapToScene({0, 0}).x(); };
    const double rest = left();
    clock.advance(Seconds(4));
    double least = rest;
    double most = rest;
    for (int i = 0; i < 50; ++i) {
        animations.advance(Seconds(0.01));
        least = std::min(least, left());
        most = std::max(most, left());
    }
    EXPECT_NEAR(least, rest - 8, 1);
    EXPECT_NEAR(most, rest + 8, 1);
    EXPECT_EQ(left(), rest);
    click(Qt::Key_Escape);
    clock.advance(Seconds(3));
    EXPECT_EQ(actionButton(page).mapToItem(&page->view(), {0, 0}).x(), left());
}

TEST_F(Interstitial, ClosesInMidSlideAndShowsAgain)
{
    const Page page = shownPage(pageAd(7));
    for (int round = 0; round < 3; ++round) {
        window.click(Qt::Key_Down);
        animations.advance(Seconds(0.1));
        window.click(Qt::Key_Left);
        animations.advance(Seconds(0.1));
        window.click(Qt::Key_Escape);
        animations.advance(Seconds(0.1));
        EXPECT_TRUE(window.left().hasActiveFocus());
        VIRLOAdPresenter::present(page, &window);
        animations.advance(Seconds(0.3));
        EXPECT_TRUE(actionButton(page).isFocused());
    }
}

using InterstitialSoak = Interstitial;

TEST_F(InterstitialSoak, PagesClosedInMidSlideLeaveNothingBehind)
{
    const JSON ad = pageAd(7);
    const auto show = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            Page page = shownPage(ad);
            for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Left, Qt::Key_Left, Qt::Key_Escape}) {
                window.click(key);
                animations.advance(Seconds(0.1));
            }
            EXPECT_TRUE(window.left().hasActiveFocus());
            const std::weak_ptr<VIRLOAdInterstitialViewController> gone = page;
            page.reset();
            ASSERT_TRUE(settle([&] { return gone.expired(); })) << "after " << i << " pages";
            clock.advance(Seconds(31)); // the delayed currency checks
            server().clearRequests();
        }
        settleAll();
    };
    // A page's screenshots take over 10 MiB. The heaps of the workers and the server, which is in this
    // process, fill ever more slowly: 6 MiB after 100 pages, 7 after 300, 18 after 1,000.
    expectNoGrowth(show, 20, soaks() ? 1000 : 10, 24'576);
}

} // namespace

} // namespace virlo::test
