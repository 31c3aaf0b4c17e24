#include "VIRLOImageStore.h"

#include "Exception.h"
#include "FileSystem.h"
#include "Folders.h"
#include "StringFormat.h"
#include "VIRLOAdFrameworkLogger.h"

#include <utility>

using virlo::FileSystem;

namespace
{

void prepareDirectory(const std::string& path)
{
    FileSystem& disk = FileSystem::shared();
    // With a slash at its end the path of a plain file would name nothing.
    const std::string plain = path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
    if (disk.isDirectory(plain))
        return;
    if (disk.exists(plain))
        VIRLOAdFrameworkLogger::logErrorWithFormat("WARNING! Internal Inconsistency A file with the same "
                                                   "name as expected directory exists in cache. "
                                                   "PATH: %@",
                                                   path);
    else
        static_cast<void>(disk.createDirectories(plain));
}

std::string pathOf(const std::string& directory, const std::string& name)
{
    return directory.ends_with('/') ? directory + name : directory + '/' + name;
}

} // namespace

VIRLOImageStore::VIRLOImageStore(const char* className) : m_className(className)
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Init %@", m_className);
    const std::string caches = virlo::Folders::caches();
    if (caches.empty())
        return;
    m_imageCacheDirectory = pathOf(caches, virlo::format("%@/images/", m_className));
    m_thumbnailCacheDirectory = pathOf(caches, virlo::format("%@/thumbnails", m_className));
    prepareDirectory(m_imageCacheDirectory);
    prepareDirectory(m_thumbnailCacheDirectory);
}

std::shared_ptr<VIRLOImageStore> VIRLOImageStore::sharedStore()
{
    virlo::raise(virlo::Exception::internalInconsistency,
                 "This is abstract class. Please instantiate one of its descendants.");
}

void VIRLOImageStore::init()
{
    // One text for every class.
    virlo::raise("Singleton", "Use + [VIRLOAppGridFeaturedImageStore sharedStore]");
}

void VIRLOImageStore::raiseAbstract(const char* operation) const
{
    virlo::raise("Abstract method called.",
                 virlo::format("Abstract method %@ called in %@. Remember to use one of concrete descendant "
                               "classes rather than abstract.",
                               operation, m_className));
}

std::shared_ptr<const virlo::Image> VIRLOImageStore::imageForItem(const VIRLOAdItem&)
{
    raiseAbstract("imageForItem:");
}

std::shared_ptr<const virlo::Image> VIRLOImageStore::thumbnailForItem(const VIRLOAdItem&)
{
    raiseAbstract("thumbnailForItem:");
}

void VIRLOImageStore::setImageForItem(std::string, const VIRLOAdItem&)
{
    raiseAbstract("setImage:forItem:");
}

void VIRLOImageStore::remember(Cache& cache, const Key& key, const Bytes& bytes)
{
    if (key && bytes)
        cache.set(*key, bytes, bytes->size());
}

VIRLOImageStore::Bytes VIRLOImageStore::recall(Cache& cache, const Key& key)
{
    return key ? cache.get(*key).value_or(nullptr) : nullptr;
}

VIRLOImageStore::Bytes VIRLOImageStore::readFile(const std::string& directory, const Key& key)
{
    if (directory.empty() || !key || !FileSystem::isFileName(*key))
        return nullptr;
    auto content = FileSystem::shared().read(pathOf(directory, *key));
    return content ? std::make_shared<const std::string>(std::move(*content)) : nullptr;
}

bool VIRLOImageStore::writeFile(const std::string& directory, const Key& key, std::string_view bytes)
{
    if (directory.empty() || !key || !FileSystem::isFileName(*key))
        return false;
    return !FileSystem::shared().writeAtomically(pathOf(directory, *key), bytes);
}
