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
constexpr std::chrono::seconds lifeOfEntry{86400};
} // namespace

VIRLOAppRequestStore::VIRLOAppRequestStore(std::string directoryPath)
    : m_directoryPath(std::move(directoryPath))
    , m_filepath(m_directoryPath.empty() ? std::string() : m_directoryPath + "/requestedItems.store")
    , m_diskQueue("com.virlohq.VIRLOAppRequestStore.disk")
    , m_syncQueue(kSyncQueue)
{
}

std::shared_ptr<VIRLOAppRequestStore> VIRLOAppRequestStore::sharedStore()
{
    // Never destroyed: workers may still use it while the process ends.
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
    std::shared_ptr<VIRLOAppRequestStore> store(new VIRLOAppRequestStore(std::move(directoryPath)));
    store->m_diskQueue.async([store] { store->load(); });
    return store;
}

void VIRLOAppRequestStore::load()
{
    std::optional<std::map<std::string, virlo::Date>> entries;
    if (!m_directoryPath.empty()) {
        prepareDirectory();
        if (const auto data = FileSystem::shared().read(m_filepath))
            entries = virlo::PropertyList::datesFromData(*data);
    }
    m_syncQueue.sync([&] {
        // What happened since the store was made is newer than the file.
        for (const std::string& removed : m_removedBeforeLoading) {
            if (entries)
                entries->erase(removed);
        }
        if (entries)
            m_appEntries.merge(*entries);
        m_removedBeforeLoading.clear();
        for (const auto& work : std::exchange(m_afterLoading, {}))
            work();
        m_loaded = true;
    });
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
    m_syncQueue.sync([&] {
        m_appEntries[url.absoluteString()] = virlo::Clock::shared().date();
        m_removedBeforeLoading.erase(url.absoluteString());
    });
}

void VIRLOAppRequestStore::removeItem(const virlo::URL& url)
{
    m_syncQueue.sync([&] {
        m_appEntries.erase(url.absoluteString());
        if (!m_loaded)
            m_removedBeforeLoading.insert(url.absoluteString());
    });
}

std::vector<virlo::URL> VIRLOAppRequestStore::items()
{
    if (!m_loaded)
        m_diskQueue.sync([] {});
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
    onceLoaded([this] {
        const virlo::Date limit = virlo::Clock::shared().date() - lifeOfEntry;
        std::erase_if(m_appEntries, [limit](const auto& entry) {
            if (entry.second >= limit)
                return false;
            VIRLOAdFrameworkLogger::logInfoWithFormat("Delete entry: %@ (%@)", entry.first, entry.second);
            return true;
        });
    });
}

void VIRLOAppRequestStore::save()
{
    onceLoaded([this] {
        virlo::JSON shown = virlo::JSON::object();
        for (const auto& [text, date] : m_appEntries)
            shown[text] = virlo::describe(date);
        VIRLOAdFrameworkLogger::logInfoWithFormat("Save entries: %@", shown);
        if (m_filepath.empty())
            return;
        m_diskQueue.async([path = m_filepath, entries = m_appEntries] {
            // What cannot be written now is written with the next save.
            static_cast<void>(
                FileSystem::shared().writeAtomically(path, virlo::PropertyList::xmlFromDates(entries)));
        });
    });
}

void VIRLOAppRequestStore::onceLoaded(std::function<void()> work)
{
    m_syncQueue.async([self = shared_from_this(), work = std::move(work)]() mutable {
        if (self->m_loaded)
            work();
        else
            self->m_afterLoading.push_back(std::move(work));
    });
}
