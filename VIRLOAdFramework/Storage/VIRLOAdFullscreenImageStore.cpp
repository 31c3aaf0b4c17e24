#include "VIRLOAdFullscreenImageStore.h"

#include "Image.h"
#include "VIRLOAdItem.h"

#include <utility>

VIRLOAdFullscreenImageStore::VIRLOAdFullscreenImageStore() : VIRLOImageStore("VIRLOAdFullscreenImageStore")
{
    // Only for images that could not be written.
    imageCache().setCountLimit(4);
    imageCache().setCostLimit(std::size_t{8} << 20);
}

std::shared_ptr<VIRLOAdFullscreenImageStore> VIRLOAdFullscreenImageStore::sharedStore()
{
    // Never destroyed: workers may still use it while the process ends.
    static const auto& shared = *new std::shared_ptr<VIRLOAdFullscreenImageStore>(initSingleton());
    return shared;
}

std::shared_ptr<VIRLOAdFullscreenImageStore> VIRLOAdFullscreenImageStore::initSingleton()
{
    return std::shared_ptr<VIRLOAdFullscreenImageStore>(new VIRLOAdFullscreenImageStore);
}

std::shared_ptr<const virlo::Image> VIRLOAdFullscreenImageStore::imageForItem(const VIRLOAdItem& item)
{
    Bytes bytes = recall(imageCache(), item.identifier());
    if (!bytes)
        bytes = readFile(imageCacheDirectory(), item.identifier());
    if (!bytes)
        return nullptr;
    return virlo::Image::decode(*bytes);
}

void VIRLOAdFullscreenImageStore::setImageForItem(std::string bytes, const VIRLOAdItem& item)
{
    const Key& key = item.identifier();
    if (!writeFile(imageCacheDirectory(), key, bytes))
        remember(imageCache(), key, std::make_shared<const std::string>(std::move(bytes)));
    else
        imageCache().remove(*key);
}
