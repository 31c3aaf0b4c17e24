#pragma once

#include "SerialQueue.h"
#include "VIRLOTrackingItem.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The placements of this run, and the mark that the library has started before on this device. Owned by
/// VIRLOAdController.
///
/// The mark is the existence of the file "tracking.store", whatever it contains. Its content is a keyed
/// archive of this run's placements, written whole at each save and never read: each run begins with an empty
/// history. Disk failures are logged and otherwise ignored; if the first save fails, the next start is a
/// first start again.
///
/// Any thread. Only `isTrackingInitiated` accesses the disk on the caller's thread; writes run one after
/// another on a queue that no caller waits for.
class VIRLOTrackingManager : public std::enable_shared_from_this<VIRLOTrackingManager>
{
public:
    static const char* const kTrackingArraySyncQueue;

    /// An empty path is a device without a folder for files: nothing is saved and there is never a mark.
    [[nodiscard]] static std::shared_ptr<VIRLOTrackingManager>
    initWithDirectoryPath(std::string directoryPath);

    VIRLOTrackingManager(const VIRLOTrackingManager&) = delete;
    VIRLOTrackingManager& operator=(const VIRLOTrackingManager&) = delete;

    [[nodiscard]] bool isTrackingInitiated() const;
    /// Creates the directory if it is missing, and saves.
    void initiateTracking();
    void registerPlacement(const std::string& placement);
    [[nodiscard]] std::optional<VIRLOTrackingItem> lastTrackingItem() const;
    /// Writes the placements registered before this call.
    void saveToFile();

    [[nodiscard]] const std::string& directoryPath() const noexcept { return m_directoryPath; }

    [[nodiscard]] std::string filepath() const;

private:
    explicit VIRLOTrackingManager(std::string directoryPath);

    void prepareDirectory() const;
    void write(const std::vector<VIRLOTrackingItem>& items) const;

    const std::string m_directoryPath;
    mutable virlo::SerialQueue m_trackingArraySyncQueue;
    virlo::SerialQueue m_writerQueue;
    std::vector<VIRLOTrackingItem> m_trackingArray;
};
