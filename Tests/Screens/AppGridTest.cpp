#include "ScreenTest.h"

#include "Button.h"
#include "CollectionView.h"
#include "CollectionViewCell.h"
#include "Footprint.h"
#include "Image.h"
#include "ImageView.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "Opener.h"
#include "Settle.h"
#include "VIRLOAdGridFeaturedView.h"
#include "VIRLOAdGridItemCollectionViewCell.h"
#include "VIRLOAdGridRecommendationCollectionViewCell.h"
#include "VIRLOAdGridViewController.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOFormViewController.h"

#include <set>
#include <thread>

namespace virlo::test
{

namespace
{

class Grid : public ScreenTest
{
protected:
    using Page = std::shared_ptr<VIRLOAdGridViewController>;

    /// A response with items `first` to `first + count`, each with an image of its own colour, and the path
    /// of the next page, if any.
    [[nodiscard]] JSON page(int first, int count, const std::string& next = {}, const JSON& item = {})
    {
        if (first == 0)
            m_name = ad()["txid"].get<std::string>();
        JSON items = JSON::array();
        for (int i = first; i < first + count; ++i) {
            const std::string name = m_name + "-" + std::to_string(i);
            JSON one = ad(item)["ads"][0];
            one["cid"] = name;
            one["backgroundUrl"] = url("/icons/" + name);
            one["impressionUrl"] = url("/impression/" + name);
            one["clickTracker"] = url("/click/" + name);
            if (!item.contains("title"))
                one["title"] = "App " + std::to_string(i);
            serve("/icons/" + name, m_icons[static_cast<std::size_t>(i) % m_icons.size()]);
            items.push_back(one);
        }
        JSON response = {{"ads", items}, {"type", "discovery"}, {"txid", m_name}};
        if (!next.empty())
            response["moreAdsUrl"] = url("/more/" + m_name + next);
        return response;
    }

    void servePage(const std::string& path, const JSON& response, std::chrono::milliseconds delay = {},
                   unsigned times = 0)
    {
        server().setFault({.path = "/more/" + m_name + path,
                           .delay = delay,
                           .status = 200,
                           .body = response.dump(),
                           .times = times});
    }

    [[nodiscard]] int impressions(int index) const
    {
        return requests("/impression/" + m_name + "-" + std::to_string(index));
    }

    [[nodiscard]] int pageRequests(const std::string& path) const
    {
        return requests("/more/" + m_name + path);
    }

    [[nodiscard]] std::string nameOf(int index) const { return m_name + "-" + std::to_string(index); }

    [[nodiscard]] Page shownPage(const JSON& ad)
    {
        const auto page = std::dynamic_pointer_cast<VIRLOAdGridViewController>(readyScreen(ad));
        present(page, [&] { return !focusedViews(page->view()).empty(); });
        rest();
        return page;
    }

    /// Until nothing moves and nothing is on its way.
    void rest()
    {
        animations.advance(Seconds(0.6));
        settleAll();
        static_cast<void>(window.image());
        settleAll();
    }

    [[nodiscard]] static CollectionView& collection(const Page& page)
    {
        return *page->view().property("collectionView").value<CollectionView*>();
    }

    template <typename T>
    [[nodiscard]] static T& outlet(const Page& page, const char* name)
    {
        return *page->view().property(name).template value<T*>();
    }

    /// The row of the focused cell; -1 where no cell is focused.
    [[nodiscard]] static int focusedRow(const Page& page)
    {
        for (int row = 0; row < collection(page).numberOfItems(); ++row) {
            const CollectionViewCell* const cell = collection(page).cellForItemAtIndexPath({0, row});
            if (cell != nullptr && cell->isFocused())
                return row;
        }
        return -1;
    }

    /// The rows with a part inside the collection.
    [[nodiscard]] static std::set<int> rowsInSight(const Page& page)
    {
        std::set<int> rows;
        CollectionView& view = collection(page);
        for (int row = 0; row < view.numberOfItems(); ++row) {
            const CollectionViewCell* const cell = view.cellForItemAtIndexPath({0, row});
            if (cell != nullptr &&
                cell->mapRectToItem(&view, cell->boundingRect()).intersects(view.boundingRect()))
                rows.insert(row);
        }
        return rows;
    }

    /// Each cell shows the title and the image of its own row, or no image yet. The number of those with one.
    static int checkCells(const Page& page)
    {
        int images = 0;
        for (int row = 0; row < collection(page).numberOfItems(); ++row) {
            const auto* const cell = qobject_cast<VIRLOAdGridItemCollectionViewCell*>(
                collection(page).cellForItemAtIndexPath({0, row}));
            if (cell == nullptr)
                continue;
            EXPECT_EQ(cell->titleLabel->text(), QStringLiteral("App %1").arg(row));
            const auto image = cell->property("adImageView").value<ImageView*>()->image();
            if (!cell->showsItemImage())
                continue;
            ++images;
            EXPECT_NEAR(image->qImage().pixelColor(75, 75).hsvHue(), hueOf(row), 3) << "row " << row;
        }
        return images;
    }

    [[nodiscard]] static int hueOf(int index) { return index % 12 * 30; }

    const Opener opener;

private:
    std::string m_name;
    const std::vector<std::string> m_icons = [] {
        std::vector<std::string> icons;
        for (int i = 0; i < 12; ++i)
            icons.push_back(imageFile(QColor::fromHsv(hueOf(i), 160, 200), {200, 160}));
        return icons;
    }();
};

TEST_F(Grid, ShowsAppsAndOpensOneBySelect)
{
    const Page page = shownPage(this->page(0, 8, {}, {{"price", "Free"}, {"description", "Forty isles."}}));
    EXPECT_EQ(focusedRow(page), 0);
    EXPECT_TRUE(settle([&] { return checkCells(page) == 8; }));
    const auto* const first =
        qobject_cast<VIRLOAdGridItemCollectionViewCell*>(collection(page).cellForItemAtIndexPath({0, 0}));
    EXPECT_EQ(first->actionLabel->text(), "Free | Play now");
    EXPECT_EQ(first->getButton->text(), "Play now");
    EXPECT_EQ(first->leftMarginConstraint->constant(), 20.0);
    EXPECT_EQ(first->descriptionLabel->exclusion(), QRectF(234.0, 0, 184.0, 80.5));
    shoot("grid-apps");
    click(Qt::Key_Return);
    EXPECT_TRUE(awaitRequests("/click/" + nameOf(0)));
}

TEST_F(Grid, OpensTheFormOfAnItemAndComesBackToItsCell)
{
    JSON ad = this->page(0, 8);
    ad["ads"][1]["actionButton"]["actionType"] = "CLICK_TO_CALL";
    const Page page = shownPage(ad);
    click(Qt::Key_Right);
    const int row = focusedRow(page);
    click(Qt::Key_Return);
    animations.advance(Seconds(1));
    ASSERT_TRUE(page->formViewController());
    ASSERT_EQ(focusedViews(page->view()).size(), 1U);
    EXPECT_EQ(focusedViews(page->view()).front()->accessibleName(), "Enter Phone Number");
    click(Qt::Key_Down);
    EXPECT_EQ(focusedViews(page->view()).front()->accessibleName(), "Enter Phone Number");
    shoot("grid-form");
    click(Qt::Key_Escape);
    animations.advance(Seconds(1));
    EXPECT_EQ(focusedRow(page), row);
}

TEST_F(Grid, MixesKindsAndShowsTheRewardOnTheButton)
{
    JSON ad = page(0, 8);
    const char* const types[] = {"appstore", "content", "email",   "call",
                                 "sms",      "dance",   "content", "appstore"};
    for (std::size_t i = 0; i < 8; ++i)
        ad["ads"][i]["type"] = types[i];
    ad["ads"][7]["currencyAmount"] = 50;
    ad["ads"][7]["currencyType"] = "coins";
    const Page page = shownPage(ad);
    shoot("grid-mixed");
    const auto recommendation = [&](int row) {
        return qobject_cast<VIRLOAdGridRecommendationCollectionViewCell*>(
            collection(page).cellForItemAtIndexPath({0, row}));
    };
    for (const int row : {1, 2, 3, 4, 6})
        EXPECT_TRUE(recommendation(row)->actionIcon->hasImage()) << row;
    EXPECT_FALSE(recommendation(5)->actionIcon->hasImage());
    const auto* const last =
        qobject_cast<VIRLOAdGridItemCollectionViewCell*>(collection(page).cellForItemAtIndexPath({0, 7}));
    EXPECT_EQ(last->getButton->text(), "Get 50 coins");
    click(Qt::Key_Right);
    EXPECT_EQ(recommendation(1)->labelsLeftMarginConstraint->constant(), 0.0);
    shoot("grid-recommendation-focused");
    click(Qt::Key_Left);
    EXPECT_EQ(recommendation(1)->labelsLeftMarginConstraint->constant(), 24.0);
}

TEST_F(Grid, GrowsPageByPageWithoutAJump)
{
    const JSON first = page(0, 12, "/1");
    servePage("/1", page(12, 12, "/2"));
    servePage("/2", page(24, 5));
    const Page page = shownPage(first);
    EXPECT_EQ(pageRequests("/1"), 0);
    for (int row = 4; row < 28; row += 4) {
        const double before = collection(page).property("scrollPosition").toDouble();
        window.click(Qt::Key_Down);
        rest();
        EXPECT_EQ(focusedRow(page), row);
        EXPECT_NEAR(collection(page).property("scrollPosition").toDouble(), before + 398, 1) << row;
        checkCells(page);
    }
    EXPECT_EQ(collection(page).numberOfItems(), 29);
    EXPECT_EQ(pageRequests("/1"), 1);
    EXPECT_EQ(pageRequests("/2"), 1);
    shoot("grid-end");
}

TEST_F(Grid, AFailedPageIsRequestedAgainAtTheNextReachOfTheEnd)
{
    const JSON first = page(0, 8, "/1");
    servePage("/1", page(8, 4));
    server().setFault(
        {.path = "/more/" + nameOf(0).substr(0, nameOf(0).rfind('-')) + "/1", .status = 500, .times = 1});
    const Page page = shownPage(first); // both lines are in sight, and so is the end
    EXPECT_EQ(pageRequests("/1"), 1);
    EXPECT_EQ(collection(page).numberOfItems(), 8);
    click(Qt::Key_Down);
    rest();
    EXPECT_EQ(pageRequests("/1"), 2);
    EXPECT_EQ(collection(page).numberOfItems(), 12);
    EXPECT_EQ(focusedRow(page), 4);
}

TEST_F(Grid, ALatePageIsRequestedOnceHoweverOftenTheEndIsSeen)
{
    const JSON first = page(0, 16, "/1");
    servePage("/1", page(16, 8), std::chrono::milliseconds(4000));
    const Page page = shownPage(first);
    for (int round = 0; round < 3; ++round) {
        for (const Qt::Key key :
             {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up})
            click(key);
    }
    EXPECT_TRUE(page->loadingAdItems());
    ASSERT_TRUE(settle([&] { return collection(page).numberOfItems() == 24; }));
    EXPECT_EQ(pageRequests("/1"), 1);
    EXPECT_EQ(focusedRow(page), 0);
}

TEST_F(Grid, APageThatComesTwiceIsShownTwice)
{
    const JSON first = page(0, 8, "/1");
    servePage("/1", page(8, 4));
    servePage("/1", page(8, 4, "/1"), {}, 1);
    const Page page = shownPage(first);
    for (int line = 1; line < 4; ++line) {
        click(Qt::Key_Down);
        rest();
        EXPECT_EQ(focusedRow(page), 4 * line);
    }
    EXPECT_EQ(pageRequests("/1"), 2);
    EXPECT_EQ(collection(page).numberOfItems(), 16);
    for (const int row : {8, 12}) {
        const auto* const cell = qobject_cast<VIRLOAdGridItemCollectionViewCell*>(
            collection(page).cellForItemAtIndexPath({0, row}));
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->titleLabel->text(), "App 8");
        EXPECT_TRUE(settle([&] { return cell->showsItemImage(); })) << row;
    }
    EXPECT_EQ(impressions(8), 2) << "an item of its own in each page";
}

TEST_F(Grid, APageWhoseRowsAreNotInsertedYetIsNotTheEnd)
{
    const JSON first = page(0, 8, "/1");
    servePage("/1", page(8, 12, "/2"), std::chrono::milliseconds(1000));
    servePage("/2", page(20, 4));
    const Page page = shownPage(first);
    ASSERT_TRUE(page->loadingAdItems());
    while (page->loadingAdItems()) // not by `settle`, which would insert the rows
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    window.press(Qt::Key_Down);
    rest();
    EXPECT_EQ(focusedRow(page), 4);
    EXPECT_EQ(collection(page).numberOfItems(), 20);
    EXPECT_EQ(pageRequests("/2"), 0);
}

struct Pages {
    const char* name;
    int first;
    int second; ///< on a second page; -1 for none
};

class GridSizes : public Grid, public testing::WithParamInterface<Pages>
{
};

TEST_P(GridSizes, AlwaysHasAFocusAndCanBeLeft)
{
    const JSON first = page(0, GetParam().first, GetParam().second < 0 ? "" : "/1");
    if (GetParam().second >= 0)
        servePage("/1", page(GetParam().first, GetParam().second));
    const Page page = shownPage(first);
    shoot(std::string("grid-") + GetParam().name);
    const int total = GetParam().first + std::max(0, GetParam().second);
    EXPECT_EQ(collection(page).numberOfItems(), total);
    EXPECT_EQ(outlet<Button>(page, "closeButton").isFocused(), total == 0);
    for (const Qt::Key key :
         {Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Left, Qt::Key_Up, Qt::Key_Up}) {
        click(key);
        ASSERT_EQ(focusedViews(page->view()).size(), 1U);
    }
    rest();
    EXPECT_TRUE(outlet<Button>(page, "closeButton").isFocused());
    click(Qt::Key_Return);
    settleAll();
    EXPECT_TRUE(window.left().hasActiveFocus());
    for (int i = 0; i < std::min(total, 8); ++i)
        EXPECT_EQ(impressions(i), 1) << i;
}

INSTANTIATE_TEST_SUITE_P(Counts, GridSizes,
                         testing::Values(Pages{"None", 0, -1}, Pages{"One", 1, -1},
                                         Pages{"AnEmptyPage", 4, 0}, Pages{"ALineAndABit", 5, -1},
                                         Pages{"OneMorePage", 4, 3}),
                         [](const auto& row) { return row.param.name; });

TEST_F(Grid, ReportsEachItemThatWasSeenOnceAndNoOther)
{
    const JSON first = page(0, 200);
    server().setFault({.path = "/impression/" + nameOf(2), .status = 503, .times = 1});
    const Page page = shownPage(first);
    std::set<int> seen = rowsInSight(page);
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up}) {
        window.click(key);
        for (int frame = 0; frame < 30; ++frame) {
            animations.advance(Seconds(0.02));
            static_cast<void>(window.image());
            seen.merge(rowsInSight(page));
        }
    }
    rest();
    ASSERT_LT(seen.size(), 30U);
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(impressions(i), (seen.contains(i) ? 1 : 0) + (i == 2 ? 1 : 0)) << i;
}

TEST_F(Grid, ShowsEveryCellItsOwnImageHoweverFastTheViewerScrollsAndImagesArrive)
{
    const JSON first = page(0, 300);
    for (int i = 0; i < 300; i += 7)
        server().setFault({.path = "/icons/" + nameOf(i),
                           .delay = std::chrono::milliseconds(i * 37 % 300),
                           .status = 200,
                           .body = imageFile(QColor::fromHsv(hueOf(i), 160, 200), {200, 160}),
                           .contentType = "image/png"});
    const Page page = shownPage(first);
    std::set<const CollectionViewCell*> cells;
    for (int step = 0; step < 140; ++step) {
        window.press(step < 74 ? Qt::Key_Down : Qt::Key_Up);
        animations.advance(Seconds(0.09));
        ASSERT_EQ(focusedViews(page->view()).size(), 1U);
        checkCells(page);
        ASSERT_TRUE(rowsInSight(page).contains(focusedRow(page))) << step;
        for (int row = 0; row < 300; ++row)
            cells.insert(collection(page).cellForItemAtIndexPath({0, row}));
    }
    rest();
    ASSERT_TRUE(settle([&] { return checkCells(page) >= 8; }));
    EXPECT_LE(cells.size(), VIRLOAdGridViewController::mostCells + 1U); // and null
}

TEST_F(Grid, ShowsTheFeaturedAdAndMovesBetweenItTheCloseButtonAndTheGrid)
{
    JSON featured =
        ad({{"title", "Lantern Isles"}}, {{"text", "Set sail"}, {"xPosition", 122}, {"yPosition", 300}});
    const std::string name = identifier();
    QImage banner(1920, 640, QImage::Format_RGB32);
    banner.fill(QColor(70, 60, 110));
    serve("/images/" + name, encoded(banner));
    featured["type"] = "featured";
    server().setFault({.path = "/ad/req", .status = 200, .body = featured.dump()});
    api->setAppIdentifier("grid");
    api->startSession();
    const Page page = shownPage(this->page(0, 12));
    ASSERT_TRUE(settle([&] { return page->featuredAd() != nullptr; }));
    rest();
    animations.advance(Seconds(1));
    shoot("grid-featured");
    EXPECT_TRUE(awaitRequests("/impression/" + name));
    EXPECT_EQ(outlet<Label>(page, "featuredAdActionButton").text(), "Set sail");
    auto& close = outlet<Button>(page, "closeButton");
    auto& featuredView = outlet<VIRLOAdGridFeaturedView>(page, "featuredView");
    EXPECT_EQ(focusedRow(page), 0);
    click(Qt::Key_Up);
    EXPECT_TRUE(close.isFocused());
    EXPECT_NEAR(close.transform().a, 1.15, 1e-6);
    shoot("grid-featured-close");
    click(Qt::Key_Left);
    EXPECT_TRUE(featuredView.isFocused());
    shoot("grid-featured-focused");
    click(Qt::Key_Down);
    EXPECT_EQ(focusedRow(page), 0);
    click(Qt::Key_Down);
    click(Qt::Key_Down);
    rest();
    shoot("grid-featured-scrolled");
    // Lines that have scrolled out lie, by geometry, on the featured area.
    click(Qt::Key_Up);
    EXPECT_EQ(focusedRow(page), 4);
    click(Qt::Key_Up);
    EXPECT_EQ(focusedRow(page), 0);
    click(Qt::Key_Up);
    EXPECT_TRUE(close.isFocused());
    click(Qt::Key_Left);
    click(Qt::Key_Return);
    EXPECT_TRUE(awaitRequests("/click/" + name));
    EXPECT_EQ(requests("/impression/" + name), 1);
}

class GridTexts : public Grid, public testing::WithParamInterface<const char*>
{
};

TEST_P(GridTexts, StayInsideTheirCards)
{
    std::string text;
    while (text.size() < 1500)
        text += GetParam();
    JSON ad = page(0, 8, {}, {{"title", text}, {"price", text}, {"description", text}, {"category", text}});
    for (const std::size_t i : {1U, 3U})
        ad["ads"][i]["type"] = "content";
    const Page page = shownPage(ad);
    static int number = 0;
    shoot("grid-texts-" + std::to_string(++number));
    for (int row = 0; row < 8; ++row) {
        const CollectionViewCell& cell = *collection(page).cellForItemAtIndexPath({0, row});
        for (const char* const name : {"titleLabel", "actionLabel", "descriptionLabel", "categoryLabel"}) {
            const auto* const label = cell.property(name).value<Label*>();
            if (label == nullptr)
                continue;
            const QQuickItem& drawn = *label->childItems().front();
            EXPECT_LE(drawn.property("contentWidth").toDouble(), label->width() + 1) << row << name;
            EXPECT_LE(drawn.property("contentHeight").toDouble(), label->height() + 1) << row << name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scripts, GridTexts,
                         testing::Values("Forty lantern isles. ", "Lanternislelanternisle",
                                         "جزر الفوانيس المضيئة ", "灯笼群岛，四十座岛屿。"));

TEST_F(Grid, ResizesWithTheWindowAndClosesWhilePagesAndImagesAreOnTheWay)
{
    const JSON first = page(0, 12, "/1");
    servePage("/1", page(12, 12), std::chrono::milliseconds(300));
    server().setFault(
        {.path = "/icons/*", .delay = std::chrono::milliseconds(300), .status = 404, .body = "none"});
    for (const QSize size : {QSize(1280, 720), QSize(3840, 2160), QSize(1000, 1000), QSize(1920, 1080)}) {
        Page page = shownPage(first);
        window.resize(size);
        click(Qt::Key_Down);
        rest();
        shoot("grid-" + std::to_string(size.width()));
        EXPECT_EQ(focusedRow(page), 4);
        click(Qt::Key_Escape);
        EXPECT_TRUE(window.left().hasActiveFocus());
        const std::weak_ptr<VIRLOAdGridViewController> gone = page;
        page.reset();
        EXPECT_TRUE(settle([&] { return gone.expired(); }));
    }
}

using GridSoak = Grid;

TEST_F(GridSoak, ScrolledGridsLeaveNothingBehind)
{
    const JSON first = page(0, 24, "/1");
    servePage("/1", page(24, 24));
    const auto show = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            Page page = shownPage(first);
            for (int line = 0; line < 8; ++line) {
                window.press(Qt::Key_Down);
                animations.advance(Seconds(0.09));
            }
            click(Qt::Key_Escape);
            EXPECT_TRUE(window.left().hasActiveFocus());
            const std::weak_ptr<VIRLOAdGridViewController> gone = page;
            page.reset();
            ASSERT_TRUE(settle([&] { return gone.expired(); }));
            clock.advance(Seconds(31)); // the delayed currency checks
            server().clearRequests();
        }
        settleAll();
    };
    server().setFault({.path = "/ad/req", .status = 404, .body = "{}"});
    api->setAppIdentifier("grid");
    api->startSession(); // without one, a request for the featured ad would wait for each grid
    // A grid with its images takes over 3 MiB; as with pages, heaps and server fill ever more slowly.
    expectNoGrowth(show, 10, soaks() ? 300 : 10, 24'576);
}

} // namespace

} // namespace virlo::test
