#pragma once

#include "DateFormatter.h"
#include "JSON.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// A session with the ad server, as of the server's last response. Held by VIRLOAdServerAPI. Any thread.
class VIRLOSession
{
public:
    /// Raises an Exception: a session is only made from a response.
    [[noreturn]] static void init();
    /// Null unless the response has a "sessionId", a "status" and a valid "timestamp".
    [[nodiscard]] static std::shared_ptr<VIRLOSession> initWithDictionary(const virlo::JSON& dictionary);

    virtual ~VIRLOSession() = default;
    VIRLOSession(const VIRLOSession&) = delete;
    VIRLOSession& operator=(const VIRLOSession&) = delete;

    /// Takes over a ping's response: all but the identifier is replaced, missing keys by empty values.
    void updateWithDictionary(const virlo::JSON& dictionary);

    [[nodiscard]] const std::string& identifier() const noexcept { return m_identifier; }

    /// Seconds until the next ping, as sent. 60 if the first response has none, 0 if a later one has none.
    [[nodiscard]] double pingInterval() const;
    [[nodiscard]] std::optional<std::string> state() const;
    [[nodiscard]] bool isActive() const;
    /// The server's time of the response.
    [[nodiscard]] std::optional<virlo::Date> date() const;

    [[nodiscard]] const std::shared_ptr<const virlo::DateFormatter>& dateFormatter() const noexcept
    {
        return m_dateFormatter;
    }

    [[nodiscard]] bool isEqual(const VIRLOSession& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

protected:
    explicit VIRLOSession(std::string identifier);

private:
    const std::string m_identifier;
    const std::shared_ptr<const virlo::DateFormatter> m_dateFormatter;

    mutable std::mutex m_mutex;
    double m_pingInterval = 0;
    std::optional<std::string> m_state;
    std::optional<virlo::Date> m_date;
};
