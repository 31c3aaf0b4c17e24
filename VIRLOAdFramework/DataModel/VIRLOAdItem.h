#pragma once

#include "Export.h"
#include "JSON.h"
#include "URL.h"
#include "VIRLOActionButton.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

enum class VIRLOAdItemType : std::uint64_t {
    Unknown = 0,
    AppStore = 1,
    Content = 2,
    Email = 3,
    Call = 4,
    SMS = 5
};

/// One offer of an advertisement: an app, content, or a way to be contacted. Construction from the server's
/// JSON never fails: a key that is missing, null or of another type leaves its property empty (or 0). Getters
/// and `setImpressionMarked` on any thread; the other setters only before the item is shared.
///
/// Items are equal by `identifier`, so they serve as cache keys; an item without one equals none.
class VIRLO_EXPORT VIRLOAdItem
{
public:
    [[nodiscard]] static std::shared_ptr<VIRLOAdItem> initWithDictionary(const virlo::JSON& dictionary);

    virtual ~VIRLOAdItem() = default;
    VIRLOAdItem(const VIRLOAdItem&) = delete;
    VIRLOAdItem& operator=(const VIRLOAdItem&) = delete;

    /// The type named "appstore", "content", "email", "call" or "sms"; Unknown for any other text.
    [[nodiscard]] VIRLOAdItemType itemTypeFromString(const std::optional<std::string>& text) const;

    [[nodiscard]] bool isEqual(const VIRLOAdItem& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

    [[nodiscard]] const std::optional<std::string>& identifier() const noexcept { return m_identifier; }

    [[nodiscard]] VIRLOAdItemType type() const noexcept { return m_type; }

    [[nodiscard]] const std::optional<std::string>& title() const noexcept { return m_title; }

    [[nodiscard]] const std::optional<std::string>& category() const noexcept { return m_category; }

    [[nodiscard]] const std::optional<std::string>& text() const noexcept { return m_text; }

    /// Null if the item has none.
    [[nodiscard]] const std::shared_ptr<const VIRLOActionButton>& actionButton() const noexcept
    {
        return m_actionButton;
    }

    /// As the screens show it; a number sent by the server is its decimal text.
    [[nodiscard]] const std::optional<std::string>& price() const noexcept { return m_price; }

    [[nodiscard]] const std::optional<virlo::URL>& impressionURL() const noexcept { return m_impressionURL; }

    [[nodiscard]] const std::optional<virlo::URL>& clickURL() const noexcept { return m_clickURL; }

    [[nodiscard]] const std::optional<virlo::URL>& clickFallback() const noexcept { return m_clickFallback; }

    [[nodiscard]] const std::optional<virlo::URL>& clickTracker() const noexcept { return m_clickTracker; }

    [[nodiscard]] const std::optional<virlo::URL>& backgroundURL() const noexcept { return m_backgroundURL; }

    /// In the server's order, without entries that are not URLs.
    [[nodiscard]] const std::vector<virlo::URL>& screenshotsURLs() const noexcept
    {
        return m_screenshotsURLs;
    }

    /// Not filled from JSON.
    [[nodiscard]] const std::optional<std::string>& format() const noexcept { return m_format; }

    [[nodiscard]] std::uint64_t currencyAmount() const noexcept { return m_currencyAmount; }

    [[nodiscard]] const std::optional<std::string>& currencyType() const noexcept { return m_currencyType; }

    /// Stars; as sent by the server, but finite.
    [[nodiscard]] float rating() const noexcept { return m_rating; }

    [[nodiscard]] std::int32_t numberOfRatings() const noexcept { return m_numberOfRatings; }

    [[nodiscard]] const std::optional<virlo::URL>& markupURL() const noexcept { return m_markupURL; }

    /// The URL of the currency check, in JSON "pollingUrl"; VIRLOAppRequestStore keeps it once the user acted
    /// on the item.
    [[nodiscard]] const std::optional<virlo::URL>& activationCheckURL() const noexcept
    {
        return m_activationCheckURL;
    }

    /// True once the server has accepted the report of this item's impression.
    [[nodiscard]] bool impressionMarked() const noexcept { return m_impressionMarked; }

    void setIdentifier(std::optional<std::string> identifier) { m_identifier = std::move(identifier); }

    void setType(VIRLOAdItemType type) { m_type = type; }

    void setTitle(std::optional<std::string> title) { m_title = std::move(title); }

    void setCategory(std::optional<std::string> category) { m_category = std::move(category); }

    void setText(std::optional<std::string> text) { m_text = std::move(text); }

    void setPrice(std::optional<std::string> price) { m_price = std::move(price); }

    void setImpressionURL(std::optional<virlo::URL> url) { m_impressionURL = std::move(url); }

    void setClickURL(std::optional<virlo::URL> url) { m_clickURL = std::move(url); }

    void setClickFallback(std::optional<virlo::URL> url) { m_clickFallback = std::move(url); }

    void setClickTracker(std::optional<virlo::URL> url) { m_clickTracker = std::move(url); }

    void setBackgroundURL(std::optional<virlo::URL> url) { m_backgroundURL = std::move(url); }

    void setScreenshotsURLs(std::vector<virlo::URL> urls) { m_screenshotsURLs = std::move(urls); }

    void setFormat(std::optional<std::string> format) { m_format = std::move(format); }

    void setCurrencyAmount(std::uint64_t amount) { m_currencyAmount = amount; }

    void setCurrencyType(std::optional<std::string> type) { m_currencyType = std::move(type); }

    void setRating(float rating) { m_rating = rating; }

    void setNumberOfRatings(std::int32_t count) { m_numberOfRatings = count; }

    void setMarkupURL(std::optional<virlo::URL> url) { m_markupURL = std::move(url); }

    void setActivationCheckURL(std::optional<virlo::URL> url) { m_activationCheckURL = std::move(url); }

    void setImpressionMarked(bool marked) { m_impressionMarked = marked; }

protected:
    explicit VIRLOAdItem(const virlo::JSON& dictionary);

private:
    std::optional<std::string> m_identifier;
    VIRLOAdItemType m_type = VIRLOAdItemType::Unknown;
    std::optional<std::string> m_title;
    std::optional<std::string> m_category;
    std::optional<std::string> m_text;
    std::shared_ptr<const VIRLOActionButton> m_actionButton;
    std::optional<std::string> m_price;
    std::optional<virlo::URL> m_impressionURL;
    std::optional<virlo::URL> m_clickURL;
    std::optional<virlo::URL> m_clickFallback;
    std::optional<virlo::URL> m_clickTracker;
    std::optional<virlo::URL> m_backgroundURL;
    std::vector<virlo::URL> m_screenshotsURLs;
    std::optional<std::string> m_format;
    std::uint64_t m_currencyAmount = 0;
    std::optional<std::string> m_currencyType;
    float m_rating = 0;
    std::int32_t m_numberOfRatings = 0;
    std::optional<virlo::URL> m_markupURL;
    std::optional<virlo::URL> m_activationCheckURL;
    std::atomic<bool> m_impressionMarked{false};
};
