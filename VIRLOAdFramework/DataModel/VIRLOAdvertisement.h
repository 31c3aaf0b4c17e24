#pragma once

#include "Clock.h"
#include "Export.h"
#include "JSON.h"
#include "URL.h"
#include "VIRLOAdItem.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// Chooses the screen. Both discovery types have the same name at the server, which reads as the first.
enum class VIRLOAdvertisementType : std::uint64_t {
    Any = 0,
    Discovery = 1,
    DiscoveryAlternative = 2,
    Interstitial = 3,
    Video = 4,
    Featured = 5,
    Engagement = 6,
    Recommendation = 7,
};

/// One response of the ad server to a request for an ad: type, items, and the URL of further items. Held by
/// the screen that shows it. Construction never fails: a key that is missing or of another type leaves its
/// property empty. Items are never removed. Any thread; the setters only before it is shared.
class VIRLO_EXPORT VIRLOAdvertisement
{
public:
    using Items = std::vector<std::shared_ptr<VIRLOAdItem>>;

    [[nodiscard]] static std::shared_ptr<VIRLOAdvertisement>
    initWithDictionary(const virlo::JSON& dictionary);

    virtual ~VIRLOAdvertisement() = default;
    VIRLOAdvertisement(const VIRLOAdvertisement&) = delete;
    VIRLOAdvertisement& operator=(const VIRLOAdvertisement&) = delete;

    /// Merges a later response: its items are appended, its URL of further items replaces the present one (a
    /// response without one ends fetching).
    void updateWithDictionary(const virlo::JSON& dictionary);
    /// Appends an item for each object of the array; other elements are skipped. Items that the advertisement
    /// has already are appended again.
    void addItemsFromArray(const virlo::JSON& array);
    void addItemsFromArray(const Items& items);

    /// A copy, which does not change when the advertisement grows.
    [[nodiscard]] Items items() const;
    [[nodiscard]] std::size_t numberOfItems() const;

    [[nodiscard]] const std::optional<std::string>& txId() const noexcept { return m_txId; }

    [[nodiscard]] const std::optional<virlo::Date>& date() const noexcept { return m_date; }

    /// Kept for information: an advertisement past it is still shown.
    [[nodiscard]] const std::optional<virlo::Date>& validUntil() const noexcept { return m_validUntil; }

    [[nodiscard]] VIRLOAdvertisementType type() const noexcept { return m_type; }

    [[nodiscard]] std::optional<virlo::URL> moreItemsURL() const;

    /// As sent by the server, without an upper limit.
    [[nodiscard]] std::uint64_t secondsToSkip() const noexcept { return m_secondsToSkip; }

    void setTxId(std::optional<std::string> txId) { m_txId = std::move(txId); }

    void setDate(std::optional<virlo::Date> date) { m_date = date; }

    void setValidUntil(std::optional<virlo::Date> date) { m_validUntil = date; }

    void setType(VIRLOAdvertisementType type) { m_type = type; }

    void setMoreItemsURL(std::optional<virlo::URL> url);

    void setSecondsToSkip(std::uint64_t seconds) { m_secondsToSkip = seconds; }

    /// Same class, not a subclass, and the same `txId`; an advertisement without one equals none.
    [[nodiscard]] bool isEqual(const VIRLOAdvertisement& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

    /// Any for an unknown name.
    [[nodiscard]] static VIRLOAdvertisementType typeByString(const std::optional<std::string>& text);
    /// Nothing for a value outside 0 to 7.
    [[nodiscard]] static std::optional<std::string> stringByType(VIRLOAdvertisementType type);

protected:
    explicit VIRLOAdvertisement(const virlo::JSON& dictionary);

private:
    std::optional<std::string> m_txId;
    std::optional<virlo::Date> m_date;
    std::optional<virlo::Date> m_validUntil;
    VIRLOAdvertisementType m_type = VIRLOAdvertisementType::Any;
    std::uint64_t m_secondsToSkip = 0;

    [[nodiscard]] Items mutableItems() const;

    mutable std::mutex m_mutex; ///< guards the members below
    std::optional<virlo::URL> m_moreItemsURL;
    Items m_mutableItems;
};
