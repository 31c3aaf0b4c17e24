#pragma once

#include "SerialQueue.h"
#include "VIRLOTrackingItem.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The placements of this run, and the mark that the library has started once on this device. Owned by
/// VIRLOAdController.
///
/// The mark is the mere existence of the file "tracking.store", a keyed archive of this run's placements,
/// which is rewritten whole at each save and never read back: each run begins with an empty history. Whatever
/// stands at its path counts. Disk failures are logged and otherwise ignored; a first save that fails makes
/// the next start a first start again.
///
/// Any thread. Only `isTrackingInitiated` touches the disk on the caller's thread; writes run one after
/// another on a queue that no caller waits for.
class VIRLOTrackingManager : public std::enable_shared_from_this<VIRLOTrackingManager>
{
public:
    static const char* const kTrackingArraySyncQueue;

    /// `directoryPath` empty means a device without a place for files.
    [[nodiscard]] static std::shared_ptr<VIRLOTrackingManager>
    initWithDirectoryPath(std::string directoryPath);

    VIRLOTrackingManager(const VIRLOTrackingManager&) = delete;
    VIRLOTrackingManager& operator=(const VIRLOTrackingManager&) = delete;

    [[nodiscard]] bool isTrackingInitiated() const;
    /// Makes the directory where it is missing and saves.
    void initiateTracking();
    void registerPlacement(const std::string& placement);
    [[nodiscard]] std::optional<VIRLOTrackingItem> lastTrackingItem() const;
    /// Writes what was registered before this call.
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
