#pragma once

#include "VIRLOImageStore.h"

#include <atomic>
#include <functional>

/// The common part of the stores with memory caches: reads try memory first, writes go to both levels
/// together with a thumbnail. Every read decodes again, so that memory holds encoded bytes only.
class VIRLOCachedImageStore : public VIRLOImageStore
{
public:
    [[nodiscard]] std::shared_ptr<const virlo::Image> imageForItem(const VIRLOAdItem& item) override;
    [[nodiscard]] std::shared_ptr<const virlo::Image> thumbnailForItem(const VIRLOAdItem& item) override;
    void setImageForItem(std::string bytes, const VIRLOAdItem& item) override;

    /// The middle of the image, scaled to exactly this size in pixels.
    [[nodiscard]] std::shared_ptr<const virlo::Image> imageForItemFilling(const VIRLOAdItem& item, int width,
                                                                          int height);

protected:
    static constexpr std::size_t mebibyte = std::size_t{1024} * 1024;

    explicit VIRLOCachedImageStore(const char* className);

    /// The encoded thumbnail: by default a rounded one of 150 × 150 points; null for bytes that do not
    /// decode.
    [[nodiscard]] virtual Bytes thumbnailOf(const Bytes& bytes) const;

private:
    using Decode = std::shared_ptr<const virlo::Image>(const std::string& bytes);

    /// A file that decodes goes into `cache`.
    [[nodiscard]] static std::shared_ptr<const virlo::Image>
    imageOf(Cache& cache, const std::string& directory, const Key& key, const std::function<Decode>& decode);
    void storeThumbnail(const Key& key, const Bytes& bytes);

    static constexpr int imagesBetweenReturns = 16; ///< of memory to the system
    std::atomic<int> m_imagesStored{0};
};
