#include "support/Certificates.h"

#include <atomic>
#include <stdexcept>

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace test_support {
namespace {

void AddExtension(X509* certificate, X509* issuer, int nid, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()), &X509_EXTENSION_free);
    if (!extension) throw std::runtime_error("no certificate extension: " + value);
    X509_add_ext(certificate, extension.get(), -1);
}

void SetName(X509* certificate, const std::string& name) {
    X509_NAME* subject = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
}

void SetValidity(X509* certificate, Validity validity) {
    constexpr long day = 24L * 60 * 60;
    const long start = validity == Validity::expired  ? -10 * day
                       : validity == Validity::future ? 5 * day
                                                      : -day;
    X509_gmtime_adj(X509_getm_notBefore(certificate), start);
    X509_gmtime_adj(X509_getm_notAfter(certificate), start + 2 * day);
}

} // namespace

Certificate Certificate::Make(const ServerIdentity& owner, bool isAuthority,
                              const Certificate* issuer) {
    static std::atomic<long> serial{1};
    Certificate made;
    made.m_key.reset(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    made.m_certificate.reset(X509_new(), &X509_free);
    X509* certificate = made.m_certificate.get();
    X509* signer = issuer ? issuer->X509Pointer() : certificate;
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
    SetName(certificate, owner.commonName);
    SetValidity(certificate, owner.validity);
    X509_set_issuer_name(certificate, X509_get_subject_name(signer));
    X509_set_pubkey(certificate, made.KeyPointer());
    AddExtension(certificate, signer, NID_basic_constraints,
                 isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
    if (!owner.names.empty()) AddExtension(certificate, signer, NID_subject_alt_name, owner.names);
    if (!X509_sign(certificate, issuer ? issuer->KeyPointer() : made.KeyPointer(), EVP_sha256()))
        throw std::runtime_error("the test certificate cannot be signed");
    return made;
}

Certificate Certificate::SelfSigned(const ServerIdentity& server) {
    return Make(server, false, nullptr);
}

Certificate Certificate::Authority() {
    return Make({"", Validity::current, "test authority"}, true, nullptr);
}

Certificate Certificate::Issue(const ServerIdentity& server) const {
    return Make(server, false, this);
}

Certificate Certificate::IssueAuthority() const {
    return Make({"", Validity::current, "lower authority"}, true, this);
}

namespace {

using Memory = std::unique_ptr<BIO, decltype(&BIO_free)>;

std::string ContentOf(const Memory& memory) {
    char* data = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &data);
    return {data, static_cast<std::size_t>(length)};
}

} // namespace

std::string Certificate::Pem() const {
    const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_X509(memory.get(), m_certificate.get());
    return ContentOf(memory);
}

std::string Certificate::PemWithKey() const {
    const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_X509(memory.get(), m_certificate.get());
    PEM_write_bio_PrivateKey(memory.get(), m_key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    return ContentOf(memory);
}

} // namespace test_support
