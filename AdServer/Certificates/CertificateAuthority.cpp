#include "CertificateAuthority.h"

#include "PrivateFolder.h"
#include "RandomIdentifier.h"

#include <cstdlib>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>
#include <utility>

namespace adserver
{

namespace
{

constexpr auto clockTolerance = std::chrono::hours(24);

[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error("cannot " + what);
}

void check(bool succeeded, const char* what)
{
    if (!succeeded)
        fail(what);
}

KeyPointer makeKey()
{
    KeyPointer key(EVP_EC_gen("P-256"));
    check(key != nullptr, "make a key");
    return key;
}

BIOPointer readOnly(const std::string& text)
{
    return BIOPointer(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

std::string textOf(const BIOPointer& memory)
{
    char* text = nullptr;
    const auto size = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(size)};
}

void setTime(ASN1_TIME* field, TimePoint time)
{
    check(ASN1_TIME_set(field, std::chrono::system_clock::to_time_t(time)) != nullptr, "date a certificate");
}

void addExtension(X509* certificate, X509* issuer, int kind, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const ExtensionPointer extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value));
    check(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "extend a certificate");
}

/// All but the extensions and the signature.
CertificatePointer makeCertificate(const std::string& name, EVP_PKEY* key, TimePoint from, TimePoint until)
{
    CertificatePointer certificate(X509_new());
    check(certificate != nullptr, "make a certificate");
    check(X509_set_version(certificate.get(), X509_VERSION_3) == 1, "make a certificate");

    BIGNUM* number = nullptr;
    // The leading digit keeps the serial number positive and of full length.
    check(BN_hex2bn(&number, ("1" + randomIdentifier().substr(1)).c_str()) > 0, "number a certificate");
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(certificate.get()));
    BN_free(number);

    setTime(X509_getm_notBefore(certificate.get()), from);
    setTime(X509_getm_notAfter(certificate.get()), until);
    auto* const subject = X509_get_subject_name(certificate.get());
    check(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                     reinterpret_cast<const unsigned char*>(name.data()),
                                     static_cast<int>(name.size()), -1, 0) == 1,
          "name a certificate");
    check(X509_set_pubkey(certificate.get(), key) == 1, "make a certificate");
    return certificate;
}

} // namespace

CertificateAuthority::CertificateAuthority(const std::filesystem::path& folder, TimePoint now)
    : m_folder(std::filesystem::absolute(folder))
    , m_now(now)
{
    const PrivateFolder lockedFolder(m_folder);
    auto authority = readIdentity("authority");
    if (!isUsable(authority, authority)) {
        authority = makeAuthority();
        writeIdentity("authority", authority);
    }
    m_server = readIdentity("server");
    if (!isUsable(m_server, authority)) {
        m_server = makeServer(authority);
        writeIdentity("server", m_server);
    }
}

std::filesystem::path CertificateAuthority::defaultFolder()
{
    const char* const state = std::getenv("XDG_STATE_HOME");
    if (state && *state == '/')
        return std::filesystem::path(state) / "virlo-ad-server";
    const char* const home = std::getenv("HOME");
    if (!home || *home == '\0')
        fail("find a folder for the certificate: neither XDG_STATE_HOME nor HOME is set");
    return std::filesystem::path(home) / ".local/state/virlo-ad-server";
}

TLSContextPointer CertificateAuthority::makeTLSContext() const
{
    TLSContextPointer context(SSL_CTX_new(TLS_server_method()));
    check(context && SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) == 1 &&
              SSL_CTX_use_certificate(context.get(), m_server.certificate.get()) == 1 &&
              SSL_CTX_use_PrivateKey(context.get(), m_server.key.get()) == 1,
          "set TLS up");
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    return context;
}

CertificateAuthority::Identity CertificateAuthority::readIdentity(const std::string& name) const
{
    const auto certificate = PrivateFolder::read(m_folder / (name + ".pem"));
    const auto key = PrivateFolder::read(m_folder / (name + ".key"));
    return {CertificatePointer(PEM_read_bio_X509(readOnly(certificate).get(), nullptr, nullptr, nullptr)),
            KeyPointer(PEM_read_bio_PrivateKey(readOnly(key).get(), nullptr, nullptr, nullptr))};
}

void CertificateAuthority::writeIdentity(const std::string& name, const Identity& identity) const
{
    const BIOPointer key(BIO_new(BIO_s_mem()));
    const BIOPointer certificate(BIO_new(BIO_s_mem()));
    check(PEM_write_bio_PrivateKey(key.get(), identity.key.get(), nullptr, nullptr, 0, nullptr, nullptr) ==
                  1 &&
              PEM_write_bio_X509(certificate.get(), identity.certificate.get()) == 1,
          "write a certificate");
    PrivateFolder::write(m_folder / (name + ".key"), textOf(key), 0600);
    PrivateFolder::write(m_folder / (name + ".pem"), textOf(certificate), 0644);
}

bool CertificateAuthority::isUsable(const Identity& identity, const Identity& issuer) const
{
    if (!identity || !issuer)
        return false;
    auto begin = std::chrono::system_clock::to_time_t(m_now);
    auto end = std::chrono::system_clock::to_time_t(m_now + renewalMargin);
    return X509_cmp_time(X509_get0_notBefore(identity.certificate.get()), &begin) < 0 &&
           X509_cmp_time(X509_get0_notAfter(identity.certificate.get()), &end) > 0 &&
           X509_check_private_key(identity.certificate.get(), identity.key.get()) == 1 &&
           X509_verify(identity.certificate.get(), issuer.key.get()) == 1;
}

CertificateAuthority::Identity CertificateAuthority::makeAuthority() const
{
    auto key = makeKey();
    // The name tells authorities of different folders apart in a client's list.
    auto certificate = makeCertificate("VIRLO ad server authority " + randomIdentifier().substr(0, 8),
                                       key.get(), m_now - clockTolerance, m_now + authorityLifetime);
    auto* const self = certificate.get();
    X509_set_issuer_name(self, X509_get_subject_name(self));
    addExtension(self, self, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    addExtension(self, self, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(self, self, NID_subject_key_identifier, "hash");
    addExtension(self, self, NID_name_constraints,
                 "critical,permitted;DNS:localhost,permitted;IP:127.0.0.1/255.255.255.255");
    check(X509_sign(self, key.get(), EVP_sha256()) > 0, "sign a certificate");
    return {std::move(certificate), std::move(key)};
}

CertificateAuthority::Identity CertificateAuthority::makeServer(const Identity& authority) const
{
    auto key = makeKey();
    auto certificate =
        makeCertificate("localhost", key.get(), m_now - clockTolerance, m_now + serverLifetime);
    auto* const self = certificate.get();
    auto* const issuer = authority.certificate.get();
    X509_set_issuer_name(self, X509_get_subject_name(issuer));
    addExtension(self, issuer, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(self, issuer, NID_key_usage, "critical,digitalSignature");
    addExtension(self, issuer, NID_ext_key_usage, "serverAuth");
    addExtension(self, issuer, NID_subject_key_identifier, "hash");
    addExtension(self, issuer, NID_authority_key_identifier, "keyid:always");
    addExtension(self, issuer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    check(X509_sign(self, authority.key.get(), EVP_sha256()) > 0, "sign a certificate");
    return {std::move(certificate), std::move(key)};
}

} // namespace adserver
