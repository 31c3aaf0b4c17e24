#include "VIRLOAppGridImageStore.h"

#include "VIRLOMimeType.h"

VIRLOAppGridImageStore::VIRLOAppGridImageStore() : VIRLOCachedImageStore("VIRLOAppGridImageStore") {}

std::shared_ptr<VIRLOAppGridImageStore> VIRLOAppGridImageStore::sharedStore()
{
    // Never destroyed: workers may still use it while the process ends.
    static const auto& shared = *new std::shared_ptr<VIRLOAppGridImageStore>(initSingleton());
    return shared;
}

std::shared_ptr<VIRLOAppGridImageStore> VIRLOAppGridImageStore::initSingleton()
{
    return std::shared_ptr<VIRLOAppGridImageStore>(new VIRLOAppGridImageStore);
}

VIRLOImageStore::Bytes VIRLOAppGridImageStore::thumbnailOf(const Bytes& bytes) const
{
    const bool isImage = VIRLOMimeType::mimeType(*bytes).find("image") != std::string::npos;
    return isImage ? VIRLOCachedImageStore::thumbnailOf(bytes) : bytes;
}
