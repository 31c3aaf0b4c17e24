/// \file
/// What a host that draws its ads itself calls beside Host.cpp: the records of an advertisement, its own
/// screens, requests, the main loop. Examples/CoreHost is a whole one.

#include <VIRLOAdFramework/MainLoop.h>
#include <VIRLOAdFramework/StringFormat.h>
#include <VIRLOAdFramework/URLSession.h>
#include <VIRLOAdFramework/VIRLOAdReports.h>
#include <VIRLOAdFramework/VIRLOAdScreens.h>
#include <VIRLOAdFramework/VIRLOAdViewController.h>
#include <VIRLOAdFramework/VIRLOAdvertisement.h>

#include <cstdio>

namespace
{
struct OwnScreen : VIRLOAdViewController {
    std::shared_ptr<VIRLOAdvertisement> ad;
    std::weak_ptr<VIRLOAdServerAPI> api;
};

class OwnScreens : public VIRLOAdScreens
{
public:
    Abandon screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                 std::shared_ptr<VIRLOAdServerAPI> api,
                                                 Completion completion) override
    {
        const auto screen = std::make_shared<OwnScreen>();
        screen->ad = std::move(advertisement);
        screen->api = api;
        completion(screen, std::nullopt);
        return {}; // nothing is left to preload
    }
};
} // namespace

void installScreens()
{
    if (VIRLOAdScreens::installed() == nullptr)
        VIRLOAdScreens::install(new OwnScreens); // lives as long as the process
}

void shown(const std::shared_ptr<VIRLOAdServerAPI>& api, const std::shared_ptr<VIRLOAdItem>& item)
{
    VIRLOAdReports::reportImpression(api, item);
    VIRLOAdReports::reportClick(api, item, [](const std::optional<virlo::URL>& page) {
        std::puts(page ? page->absoluteString().c_str() : "no page");
    });
}

void readAdvertisement(const VIRLOAdvertisement& ad)
{
    const auto name = VIRLOAdvertisement::stringByType(ad.type()).value_or("");
    std::printf(
        "%s %s, %zu items, skipped after %d s, more: %d, dated: %d, valid: %d, hash %zu, itself: %d %s %d\n",
        ad.txId().value_or("").c_str(), name.c_str(), ad.numberOfItems(), int(ad.secondsToSkip()),
        ad.moreItemsURL().has_value(), ad.date().has_value(), ad.validUntil().has_value(), ad.hash(),
        ad.isEqual(ad), ad.description().c_str(), VIRLOAdvertisement::typeByString(name) == ad.type());
    for (const auto& item : ad.items()) {
        std::puts(item->description().c_str());
        for (const auto& text : {item->identifier(), item->title(), item->category(), item->text(),
                                 item->price(), item->format(), item->currencyType()})
            std::puts(text.value_or("none").c_str());
        for (const auto& url :
             {item->backgroundURL(), item->clickURL(), item->clickFallback(), item->clickTracker(),
              item->impressionURL(), item->markupURL(), item->activationCheckURL()})
            std::puts(url ? url->absoluteString().c_str() : "none");
        std::printf(
            "%.1f stars of %d, %d coins, %zu screenshots, counted: %d, app: %d, hash %zu, itself: %d\n",
            double(item->rating()), item->numberOfRatings(), int(item->currencyAmount()),
            item->screenshotsURLs().size(), item->impressionMarked(),
            item->type() == VIRLOAdItemType::AppStore, item->hash(), item->isEqual(*item));
        if (const auto button = item->actionButton())
            std::printf("%s %s at %.0f, %.0f, red %.2f on %.2f\n", button->actionType().value_or("").c_str(),
                        button->text().value_or("").c_str(), button->xPosition(), button->yPosition(),
                        double(button->textColor().red), double(button->backgroundColor().red));
    }
}

/// For a host's own tests: records without a server.
std::shared_ptr<VIRLOAdvertisement> advertisementMadeByHand()
{
    const auto item = VIRLOAdItem::initWithDictionary({{"cid", "one"}});
    const auto url = virlo::URL::fromString("https://example.com/image.jpg");
    item->setIdentifier("two");
    item->setType(item->itemTypeFromString("content"));
    item->setTitle("Two");
    item->setCategory("Games");
    item->setText("A second item.");
    item->setPrice("Free");
    item->setFormat("wide");
    item->setRating(4.5F);
    item->setNumberOfRatings(120);
    item->setCurrencyAmount(50);
    item->setCurrencyType("coins");
    item->setBackgroundURL(url);
    item->setClickURL(url);
    item->setClickFallback(url);
    item->setClickTracker(url);
    item->setImpressionURL(url);
    item->setMarkupURL(url);
    item->setActivationCheckURL(url);
    item->setScreenshotsURLs({*url});
    item->setImpressionMarked(false);
    const auto button = VIRLOActionButton::initWithDictionary({{"text", "Look"}});

    auto ad = VIRLOAdvertisement::initWithDictionary({{"txid", "1"}, {"type", "engagement"}});
    ad->setTxId("2");
    ad->setType(VIRLOAdvertisementType::Interstitial);
    ad->setSecondsToSkip(button->text() ? 5 : 0);
    ad->setDate(virlo::Date());
    ad->setValidUntil(virlo::Date());
    ad->setMoreItemsURL(url);
    ad->addItemsFromArray(VIRLOAdvertisement::Items{item});
    ad->updateWithDictionary({{"ads", {{{"cid", "three"}}}}});
    return ad;
}

void requests()
{
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile("/etc/box/authority.pem");
    const auto session =
        virlo::URLSession::sessionWithConfiguration(virlo::URLSessionConfiguration::defaultConfiguration());
    const auto base = virlo::URL::fromString("https://user@example.com:8443/a?b=c");
    const auto url = base->appendingPathComponent("image.jpg").appendingQueryItems({{"size", "wide"}});
    std::printf("%s %s %s %s %s %s\n", url.scheme().c_str(), url.host().c_str(), url.path().c_str(),
                std::string(url.origin()).c_str(), url.encodedString().c_str(), virlo::describe(url).c_str());
    const auto task =
        session->dataTask({.url = url}, [](const std::string& data, const auto& response, const auto& error) {
            std::printf("%zu bytes, %d, %d\n", data.size(), response ? int(response->statusCode) : 0,
                        error.has_value());
        });
    task->resume();
    task->cancel();
    const auto stream = session->streamTask(
        {.url = url}, [](std::string_view, const auto&) { return true; },
        [](const std::string&, const auto&, const auto&) {});
    stream->resume();
    stream->suspend();
    session->finishTasksAndInvalidate();
    session->invalidateAndCancel();
    std::puts(virlo::format("%@ has %d items", "A list", 3).c_str());
}

/// Once a frame of the host's own loop.
void frame()
{
    virlo::MainLoop& loop = virlo::MainLoop::shared();
    loop.post([] { std::puts("on the main thread"); });
    virlo::MainLoop::performOnMain([] { std::puts(virlo::MainLoop::isMainThread() ? "yes" : "no"); });
    loop.runUntil([] { return false; }, virlo::Seconds(1.0 / 60));
    virlo::MainLoop::setShared(nullptr); // an adapter of the host's own loop goes here
}
