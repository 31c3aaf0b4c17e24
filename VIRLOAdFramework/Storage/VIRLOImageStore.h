#pragma once

#include "MemoryCache.h"
#include "VIRLOImageStoreProtocol.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// Images of ad items as encoded bytes, at two levels: a bounded memory cache and files in the host's
/// caches folder. Each kind of screen has a store of its own class, one for the process.
///
/// Files: "<caches>/<class name>/images/<identifier>", the bytes as downloaded, and
/// "<caches>/<class name>/thumbnails/<identifier>", PNG; the system may empty the caches folder at any time.
/// Names are the items' identifiers exactly as given. An identifier that cannot be a file name never reaches
/// the disk: its image is kept in memory alone. A file that does not decode counts as missing, a write that
/// fails is ignored.
///
/// Every operation and the first use of a store may wait for the disk and decode: call it from a worker. Any
/// thread; files change as a whole.
class VIRLOImageStore : public VIRLOImageStoreProtocol
{
public:
    /// Raises: only the descendants have a store.
    [[noreturn]] static std::shared_ptr<VIRLOImageStore> sharedStore();
    /// Raises an Exception named "Singleton".
    [[noreturn]] static void init();

    VIRLOImageStore(const VIRLOImageStore&) = delete;
    VIRLOImageStore& operator=(const VIRLOImageStore&) = delete;

    /// These three raise an Exception where the descendant does not have the operation.
    [[nodiscard]] std::shared_ptr<const virlo::Image> imageForItem(const VIRLOAdItem& item) override;
    [[nodiscard]] std::shared_ptr<const virlo::Image> thumbnailForItem(const VIRLOAdItem& item) override;
    void setImageForItem(std::string bytes, const VIRLOAdItem& item) override;

    /// Empty where the host has no caches folder.
    [[nodiscard]] const std::string& imageCacheDirectory() const noexcept { return m_imageCacheDirectory; }

    [[nodiscard]] const std::string& thumbnailCacheDirectory() const noexcept
    {
        return m_thumbnailCacheDirectory;
    }

protected:
    using Bytes = std::shared_ptr<const std::string>;
    using Cache = virlo::MemoryCache<std::string, Bytes>;
    /// The name of an item (or a screenshot) in a cache and a folder; none for an item without identifier.
    using Key = std::optional<std::string>;

    explicit VIRLOImageStore(const char* className);

    static void remember(Cache& cache, const Key& key, const Bytes& bytes);
    [[nodiscard]] static Bytes recall(Cache& cache, const Key& key);
    /// Null where there is no such file, or the key is no file name.
    [[nodiscard]] static Bytes readFile(const std::string& directory, const Key& key);
    /// False where nothing was written.
    static bool writeFile(const std::string& directory, const Key& key, std::string_view bytes);

    Cache& imageCache() noexcept { return m_imageCache; }

    Cache& thumbnailCache() noexcept { return m_thumbnailCache; }

private:
    [[noreturn]] void raiseAbstract(const char* operation) const;

    const std::string m_className;
    Cache m_imageCache;
    Cache m_thumbnailCache;
    std::string m_imageCacheDirectory;
    std::string m_thumbnailCacheDirectory;
};
