#include "VIRLOTrackingManager.h"

#include "FileSystem.h"
#include "VIRLOAdFrameworkLogger.h"

#include <utility>

using virlo::FileSystem;

// The label's prefix differs from the others' on purpose.
const char* const VIRLOTrackingManager::kTrackingArraySyncQueue = "com.virlohq.KSTVTrackingManager";

VIRLOTrackingManager::VIRLOTrackingManager(std::string directoryPath)
    : m_directoryPath(std::move(directoryPath))
    , m_trackingArraySyncQueue(kTrackingArraySyncQueue)
    , m_writerQueue("com.virlohq.KSTVTrackingManager.writer")
{
}

std::shared_ptr<VIRLOTrackingManager> VIRLOTrackingManager::initWithDirectoryPath(std::string directoryPath)
{
    return std::shared_ptr<VIRLOTrackingManager>(new VIRLOTrackingManager(std::move(directoryPath)));
}

std::string VIRLOTrackingManager::filepath() const
{
    return m_directoryPath.empty() ? std::string() : m_directoryPath + "/tracking.store";
}

bool VIRLOTrackingManager::isTrackingInitiated() const
{
    return !m_directoryPath.empty() && FileSystem::shared().exists(filepath());
}

void VIRLOTrackingManager::initiateTracking()
{
    VIRLOAdFrameworkLogger::logInfoWithFormat("Initiate tracking");
    m_writerQueue.async([self = shared_from_this()] { self->prepareDirectory(); });
    saveToFile();
}

void VIRLOTrackingManager::prepareDirectory() const
{
    if (m_directoryPath.empty())
        return;
    FileSystem& disk = FileSystem::shared();
    if (disk.exists(m_directoryPath)) {
        if (!disk.isDirectory(m_directoryPath))
            VIRLOAdFrameworkLogger::logErrorWithFormat(
                "WARNING! Internal Inconsistency A file with the same name as "
                "expected directory exists in cache. PATH: %@",
                m_directoryPath);
        return;
    }
    if (const auto error = disk.createDirectories(m_directoryPath))
        VIRLOAdFrameworkLogger::logWarningWithFormat("Cannot create directory %@. Error: %@", m_directoryPath,
                                                     error);
}

void VIRLOTrackingManager::registerPlacement(const std::string& placement)
{
    m_trackingArraySyncQueue.sync(
        [&] { m_trackingArray.push_back(VIRLOTrackingItem::initWithPlacement(placement)); });
}

std::optional<VIRLOTrackingItem> VIRLOTrackingManager::lastTrackingItem() const
{
    return m_trackingArraySyncQueue.read(
        [this] { return m_trackingArray.empty() ? std::nullopt : std::optional(m_trackingArray.back()); });
}

void VIRLOTrackingManager::saveToFile()
{
    m_trackingArraySyncQueue.async([self = shared_from_this()] {
        self->m_writerQueue.async([self, items = self->m_trackingArray] { self->write(items); });
    });
}

void VIRLOTrackingManager::write(const std::vector<VIRLOTrackingItem>& items) const
{
    std::vector<virlo::KeyedArchive::Object> objects;
    objects.reserve(items.size());
    for (const VIRLOTrackingItem& item : items)
        objects.push_back(item.archivedObject());
    if (m_directoryPath.empty() ||
        FileSystem::shared().writeAtomically(filepath(), virlo::KeyedArchive::data(objects)))
        VIRLOAdFrameworkLogger::logWarningWithFormat("Cannot save tracking information to: %@", filepath());
}
