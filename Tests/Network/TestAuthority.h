#pragma once

#include "TemporaryFolder.h"

#include <openssl/ssl.h>

#include <memory>
#include <string>

namespace virlo::test
{

/// A certificate authority of the test's own and one certificate of its for localhost and 127.0.0.1, made
/// anew.
class TestAuthority
{
public:
    TestAuthority();

    /// The authority's certificate as a PEM file.
    [[nodiscard]] std::string file() const { return m_folder.path("authority.pem"); }

    [[nodiscard]] X509* serverCertificate() const { return m_serverCertificate.get(); }

    [[nodiscard]] EVP_PKEY* serverKey() const { return m_serverKey.get(); }

private:
    struct Free {
        void operator()(X509* certificate) const { X509_free(certificate); }

        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };

    using Certificate = std::unique_ptr<X509, Free>;
    using Key = std::unique_ptr<EVP_PKEY, Free>;

    [[nodiscard]] static Certificate make(const char* name, const Key& key, X509* issuer,
                                          const Key& issuerKey);

    TemporaryFolder m_folder;
    Key m_serverKey;
    Certificate m_serverCertificate;
};

} // namespace virlo::test
