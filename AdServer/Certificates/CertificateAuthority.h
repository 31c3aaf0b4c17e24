#pragma once

#include "Dates.h"
#include "OpenSSLTypes.h"

#include <chrono>
#include <filesystem>
#include <string>

namespace adserver
{

/// The private authority of this machine's ad servers and the certificate that it gives them, kept in one
/// folder:
///
///     authority.pem  what clients trust; 10 years, can vouch for localhost and 127.0.0.1 only
///     authority.key  its key                                                            (mode 0600)
///     server.pem     for localhost and 127.0.0.1; a year
///     server.key     its key                                                            (mode 0600)
///
/// A file that is missing, damaged, does not fit the others or is about to expire is replaced; a new
/// authority must be trusted again. Servers that start at the same moment take turns by a lock on the folder.
/// Used while starting only.
class CertificateAuthority
{
public:
    static constexpr auto authorityLifetime = std::chrono::hours(24 * 3650);
    static constexpr auto serverLifetime = std::chrono::hours(24 * 365);
    /// What is left when a certificate is renewed.
    static constexpr auto renewalMargin = std::chrono::hours(24 * 30);

    /// Throws std::runtime_error when the folder cannot be used.
    CertificateAuthority(const std::filesystem::path& folder, TimePoint now);

    [[nodiscard]] std::filesystem::path authorityFile() const { return m_folder / "authority.pem"; }

    /// With the server's certificate and key, TLS 1.2 at least.
    [[nodiscard]] TLSContextPointer makeTLSContext() const;

    /// `$XDG_STATE_HOME/virlo-ad-server` or `~/.local/state/virlo-ad-server`.
    [[nodiscard]] static std::filesystem::path defaultFolder();

private:
    struct Identity {
        CertificatePointer certificate;
        KeyPointer key;

        explicit operator bool() const { return certificate && key; }
    };

    [[nodiscard]] Identity readIdentity(const std::string& name) const;
    void writeIdentity(const std::string& name, const Identity& identity) const;
    [[nodiscard]] bool isUsable(const Identity& identity, const Identity& issuer) const;
    [[nodiscard]] Identity makeAuthority() const;
    [[nodiscard]] Identity makeServer(const Identity& authority) const;

    const std::filesystem::path m_folder;
    const TimePoint m_now;
    Identity m_server;
};

} // namespace adserver
