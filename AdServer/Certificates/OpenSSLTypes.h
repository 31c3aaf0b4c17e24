#pragma once

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>

namespace adserver
{

template <auto release>
struct OpenSSLRelease {
    template <typename Object>
    void operator()(Object* object) const
    {
        release(object);
    }
};

using KeyPointer = std::unique_ptr<EVP_PKEY, OpenSSLRelease<EVP_PKEY_free>>;
using CertificatePointer = std::unique_ptr<X509, OpenSSLRelease<X509_free>>;
using ExtensionPointer = std::unique_ptr<X509_EXTENSION, OpenSSLRelease<X509_EXTENSION_free>>;
using BIOPointer = std::unique_ptr<BIO, OpenSSLRelease<BIO_free_all>>;
using TLSContextPointer = std::unique_ptr<SSL_CTX, OpenSSLRelease<SSL_CTX_free>>;
using TLSPointer = std::unique_ptr<SSL, OpenSSLRelease<SSL_free>>;

} // namespace adserver
