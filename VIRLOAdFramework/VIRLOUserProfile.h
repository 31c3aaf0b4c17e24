#pragma once

#include "Export.h"
#include "JSON.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// The host's description of its user, by which the server chooses ads. Every session ping carries the whole
/// profile; what was never set is not sent. In memory only: it is empty when the process starts. Any thread;
/// no operation fails or blocks.
class VIRLO_EXPORT VIRLOUserProfile
{
public:
    /// The one instance; it lives as long as the process.
    [[nodiscard]] static std::shared_ptr<VIRLOUserProfile> sharedProfile();

    VIRLOUserProfile(const VIRLOUserProfile&) = delete;
    VIRLOUserProfile& operator=(const VIRLOUserProfile&) = delete;

    void reset();
    /// What the ping sends: a copy of `profileDict`, the values set under the server's keys "age", "gender"
    /// and "keywords".
    [[nodiscard]] virlo::JSON profileDictionary() const;
    [[nodiscard]] virlo::JSON profileDict() const;

    /// In years; 0 where never set.
    [[nodiscard]] std::uint64_t age() const;
    void setAge(std::uint64_t years);

    /// Free text, sent unchanged.
    [[nodiscard]] std::optional<std::string> gender() const;
    void setGender(const std::string& gender);

    /// In the order added, with duplicates. Reading them makes an empty list part of what is sent.
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
