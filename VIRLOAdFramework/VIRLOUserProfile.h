#pragma once

#include "Export.h"
#include "JSON.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// What the host tells about its user, for choosing ads. It travels whole to the ad server with every session
/// ping; what was never set is not sent. In memory only: it starts empty in every process. Any thread;
/// nothing fails or waits.
class VIRLO_EXPORT VIRLOUserProfile
{
public:
    /// The one profile, which lives as long as the process.
    [[nodiscard]] static std::shared_ptr<VIRLOUserProfile> sharedProfile();

    VIRLOUserProfile(const VIRLOUserProfile&) = delete;
    VIRLOUserProfile& operator=(const VIRLOUserProfile&) = delete;

    void reset();
    /// A copy of everything set, under the server's keys "age", "gender" and "keywords".
    [[nodiscard]] virlo::JSON profileDictionary() const;

    /// In years; 0 where never set.
    [[nodiscard]] std::uint64_t age() const;
    void setAge(std::uint64_t years);

    /// Free text, sent as it stands.
    [[nodiscard]] std::optional<std::string> gender() const;
    void setGender(const std::string& gender);

    /// In the order added, duplicates included. Reading them makes the (empty) list part of what is sent.
    [[nodiscard]] std::vector<std::string> keywords();
    void addKeyword(const std::string& keyword);
    /// Removes every keyword equal to `keyword`.
    void removeKeyword(const std::string& keyword);

private:
    VIRLOUserProfile();
    static std::shared_ptr<VIRLOUserProfile> initPrivate();

    virlo::JSON& keywordArrayLocked();

    mutable std::mutex m_mutex;
    virlo::JSON m_profileDict;
};
