#pragma once

#include "Clock.h"
#include "SerialQueue.h"
#include "URL.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// The addresses at which the server is asked whether an app that the user was sent to has earned a reward,
/// kept across launches for a day each.
///
/// File: "Preferences/VIRLOAppRequestStore/requestedItems.store" in the library folder, an XML property list
/// of URL to date, written whole at each `save`. A missing or damaged file reads as an empty store; a write
/// that fails is ignored.
///
/// Any thread. The file is read on a queue of the store's own, begun when the store is made; only `items`
/// waits for that reading, so it is not for the main thread. What is added or removed before the reading ends
/// holds against the file.
class VIRLOAppRequestStore : public std::enable_shared_from_this<VIRLOAppRequestStore>
{
public:
    static const char* const kSyncQueue;

    /// The one store of the process, made on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAppRequestStore> sharedStore();
    /// A store on a folder of the caller's; an empty path keeps everything in memory.
    [[nodiscard]] static std::shared_ptr<VIRLOAppRequestStore>
    storeWithDirectoryPath(std::string directoryPath);

    VIRLOAppRequestStore(const VIRLOAppRequestStore&) = delete;
    VIRLOAppRequestStore& operator=(const VIRLOAppRequestStore&) = delete;

    /// Dated now, also where it is there already.
    void addItem(const virlo::URL& url);
    void removeItem(const virlo::URL& url);
    /// In no given order.
    [[nodiscard]] std::vector<virlo::URL> items();
    /// Forgets what was added more than a day ago; an `items` called after it sees it done.
    void removeExpiredItems();
    void save();

    [[nodiscard]] const std::string& filepath() const noexcept { return m_filepath; }

private:
    explicit VIRLOAppRequestStore(std::string directoryPath);
    static std::shared_ptr<VIRLOAppRequestStore> initPrivate();

    void load();
    void prepareDirectory() const;
    /// Runs `work` on the sync queue, once the file has been read.
    void onceLoaded(std::function<void()> work);

    const std::string m_directoryPath;
    const std::string m_filepath;
    virlo::SerialQueue m_diskQueue;
    virlo::SerialQueue m_syncQueue; ///< guards the rest
    std::map<std::string, virlo::Date> m_appEntries;
    std::set<std::string> m_removedBeforeLoading;
    std::vector<std::function<void()>> m_afterLoading;
    std::atomic<bool> m_loaded{false};
};
