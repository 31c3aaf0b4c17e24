#include "TestAuthority.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <gtest/gtest.h>

namespace virlo::test
{

namespace
{
void addExtension(X509* certificate, X509* issuer, int kind, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value);
    ASSERT_NE(extension, nullptr) << value;
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}
} // namespace

TestAuthority::TestAuthority()
{
    const Key authorityKey(EVP_EC_gen("P-256"));
    const Certificate authority = make("Test Authority", authorityKey, nullptr, authorityKey);
    m_serverKey.reset(EVP_EC_gen("P-256"));
    m_serverCertificate = make("localhost", m_serverKey, authority.get(), authorityKey);

    BIO* text = BIO_new(BIO_s_mem());
    PEM_write_bio_X509(text, authority.get());
    char* begin = nullptr;
    const long size = BIO_get_mem_data(text, &begin);
    m_folder.write("authority.pem", {begin, static_cast<std::size_t>(size)});
    BIO_free(text);
}

TestAuthority::Certificate TestAuthority::make(const char* name, const Key& key, X509* issuer,
                                               const Key& issuerKey)
{
    Certificate certificate(X509_new());
    X509* const made = certificate.get();
    X509_set_version(made, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(made), issuer == nullptr ? 1 : 2);
    X509_gmtime_adj(X509_getm_notBefore(made), -3600);
    X509_gmtime_adj(X509_getm_notAfter(made), 3600);
    X509_set_pubkey(made, key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
    X509* const signer = issuer == nullptr ? made : issuer;
    X509_set_issuer_name(made, X509_get_subject_name(signer));
    addExtension(made, signer, NID_basic_constraints, issuer == nullptr ? "critical,CA:TRUE" : "CA:FALSE");
    if (issuer == nullptr)
        addExtension(made, signer, NID_key_usage, "critical,keyCertSign");
    else
        addExtension(made, signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    X509_sign(made, issuerKey.get(), EVP_sha256());
    return certificate;
}

} // namespace virlo::test
