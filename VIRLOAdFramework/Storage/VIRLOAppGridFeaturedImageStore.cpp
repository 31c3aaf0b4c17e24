#include "VIRLOAppGridFeaturedImageStore.h"

VIRLOAppGridFeaturedImageStore::VIRLOAppGridFeaturedImageStore()
    : VIRLOCachedImageStore("VIRLOAppGridFeaturedImageStore")
{
}

std::shared_ptr<VIRLOAppGridFeaturedImageStore> VIRLOAppGridFeaturedImageStore::sharedStore()
{
    // Never destroyed: workers may still use it while the process ends.
    static const auto& shared = *new std::shared_ptr<VIRLOAppGridFeaturedImageStore>(initSingleton());
    return shared;
}

std::shared_ptr<VIRLOAppGridFeaturedImageStore> VIRLOAppGridFeaturedImageStore::initSingleton()
{
    return std::shared_ptr<VIRLOAppGridFeaturedImageStore>(new VIRLOAppGridFeaturedImageStore);
}
