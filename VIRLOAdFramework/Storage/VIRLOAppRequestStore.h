#pragma once

#include "Clock.h"
#include "SerialQueue.h"
#include "URL.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The currency-check URLs (`activationCheckURL`) of the items that the user acted on, kept across launches
/// for a day each. At each URL the server tells whether the user has earned a reward.
///
/// File: "Preferences/VIRLOAppRequestStore/requestedItems.store" in the library folder, an XML property list
/// of URL to date, written whole at each `save`. A missing or damaged file reads as an empty store; a failed
/// write is ignored.
///
/// Any thread. Creating a store reads the file, so `sharedStore` is first called on a worker; the operations
/// never wait for the disk.
class VIRLOAppRequestStore : public std::enable_shared_from_this<VIRLOAppRequestStore>
{
public:
    static const char* const kSyncQueue;

    /// The process's store, created on first use.
    [[nodiscard]] static std::shared_ptr<VIRLOAppRequestStore> sharedStore();
    /// A store in another folder; with an empty path, in memory only.
    [[nodiscard]] static std::shared_ptr<VIRLOAppRequestStore>
    storeWithDirectoryPath(std::string directoryPath);

    VIRLOAppRequestStore(const VIRLOAppRequestStore&) = delete;
    VIRLOAppRequestStore& operator=(const VIRLOAppRequestStore&) = delete;

    /// Dated now, even if the store has the URL already.
    void addItem(const virlo::URL& url);
    void removeItem(const virlo::URL& url);
    /// In no given order.
    [[nodiscard]] std::vector<virlo::URL> items();
    /// Removes URLs added more than a day ago; later calls of `items` see the result.
    void removeExpiredItems();
    void save();

    [[nodiscard]] const std::string& filepath() const noexcept { return m_filepath; }

private:
    using Entries = std::map<std::string, virlo::Date>;

    explicit VIRLOAppRequestStore(std::string directoryPath);
    static std::shared_ptr<VIRLOAppRequestStore> initPrivate();

    void prepareDirectory() const;

    const std::string m_directoryPath;
    const std::string m_filepath;
    virlo::SerialQueue m_syncQueue; ///< guards `m_appEntries`
    Entries m_appEntries;
    virlo::SerialQueue m_diskQueue; ///< writes, one after another
};
