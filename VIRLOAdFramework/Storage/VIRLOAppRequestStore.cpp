#include "VIRLOAppRequestStore.h"

#include "FileSystem.h"
#include "Folders.h"
#include "PropertyList.h"
#include "VIRLOAdFrameworkLogger.h"

#include <utility>

using virlo::FileSystem;

const char* const VIRLOAppRequestStore::kSyncQueue = "com.virlohq.VIRLOAppRequestStore";

namespace
{
constexpr std::chrono::seconds timeToLive{86400};
} // namespace

VIRLOAppRequestStore::VIRLOAppRequestStore(std::string directoryPath)
    : m_directoryPath(std::move(directoryPath))
    , m_filepath(m_directoryPath.empty() ? std::string() : m_directoryPath + "/requestedItems.store")
    , m_syncQueue(kSyncQueue)
    , m_diskQueue("com.virlohq.VIRLOAppRequestStore.disk")
{
    if (m_directoryPath.empty())
        return;
    prepareDirectory();
    if (const auto xml = FileSystem::shared().read(m_filepath))
        m_appEntries = virlo::PropertyList::datesFromXML(*xml).value_or(Entries());
}

std::shared_ptr<VIRLOAppRequestStore> VIRLOAppRequestStore::sharedStore()
{
    // Never destroyed: workers use it until the process ends.
    static const auto& shared = *new std::shared_ptr<VIRLOAppRequestStore>(initPrivate());
    return shared;
}

std::shared_ptr<VIRLOAppRequestStore> VIRLOAppRequestStore::initPrivate()
{
    const std::string library = virlo::Folders::library();
    return storeWithDirectoryPath(library.empty() ? library : library + "/Preferences/VIRLOAppRequestStore");
}

std::shared_ptr<VIRLOAppRequestStore> VIRLOAppRequestStore::storeWithDirectoryPath(std::string directoryPath)
{
    return std::shared_ptr<VIRLOAppRequestStore>(new VIRLOAppRequestStore(std::move(directoryPath)));
}

void VIRLOAppRequestStore::prepareDirectory() const
{
    FileSystem& disk = FileSystem::shared();
    if (disk.exists(m_directoryPath)) {
        if (!disk.isDirectory(m_directoryPath))
            VIRLOAdFrameworkLogger::logErrorWithFormat(
                "File is located in directory where subdirectory is expected to exist. (%@)",
                m_directoryPath);
        return;
    }
    if (const auto error = disk.createDirectories(m_directoryPath))
        VIRLOAdFrameworkLogger::logErrorWithFormat("Cannot create directory %@. Error: %@", m_directoryPath,
                                                   error);
}

void VIRLOAppRequestStore::addItem(const virlo::URL& url)
{
    m_syncQueue.sync([&] { m_appEntries[url.absoluteString()] = virlo::Clock::shared().date(); });
}

void VIRLOAppRequestStore::removeItem(const virlo::URL& url)
{
    m_syncQueue.sync([&] { m_appEntries.erase(url.absoluteString()); });
}

std::vector<virlo::URL> VIRLOAppRequestStore::items()
{
    return m_syncQueue.read([this] {
        std::vector<virlo::URL> urls;
        for (const auto& [text, date] : m_appEntries) {
            if (auto url = virlo::URL::fromString(text))
                urls.push_back(std::move(*url));
        }
        return urls;
    });
}

void VIRLOAppRequestStore::removeExpiredItems()
{
    m_syncQueue.async([self = shared_from_this()] {
        const virlo::Date limit = virlo::Clock::shared().date() - timeToLive;
        std::erase_if(self->m_appEntries, [limit](const auto& entry) {
            if (entry.second >= limit)
                return false;
            VIRLOAdFrameworkLogger::logInfoWithFormat("Delete entry: %@ (%@)", entry.first, entry.second);
            return true;
        });
    });
}

void VIRLOAppRequestStore::save()
{
    m_syncQueue.async([self = shared_from_this()] {
        VIRLOAdFrameworkLogger::logInfoWithFormat("Save entries: %@", self->m_appEntries);
        if (self->m_filepath.empty())
            return;
        self->m_diskQueue.async([path = self->m_filepath, entries = self->m_appEntries] {
            // A failed write is made up for by the next save.
            static_cast<void>(
                FileSystem::shared().writeAtomically(path, virlo::PropertyList::xmlFromDates(entries)));
        });
    });
}
