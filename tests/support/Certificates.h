// Certificates for HTTPS test servers, made anew in each run.
#pragma once

#include <memory>
#include <string>

// As libcrypto declares them.
struct x509_st;
struct evp_pkey_st;

namespace test_support {

enum class Validity { current, expired, future };

// What a server's certificate says of it.
struct ServerIdentity {
    std::string names; // "IP:127.0.0.1,DNS:localhost": its subjectAltName; empty: none
    Validity validity = Validity::current;
    std::string commonName = "test server";
};

// A certificate with its key.
class Certificate {
public:
    static Certificate SelfSigned(const ServerIdentity& server);
    static Certificate Authority();
    // Signed by this one, which must be an authority.
    Certificate Issue(const ServerIdentity& server) const;
    Certificate IssueAuthority() const;

    // The certificate alone, in PEM.
    std::string Pem() const;
    std::string PemWithKey() const;
    x509_st* X509Pointer() const { return m_certificate.get(); }
    evp_pkey_st* KeyPointer() const { return m_key.get(); }

private:
    static Certificate Make(const ServerIdentity& owner, bool isAuthority,
                            const Certificate* issuer);

    std::shared_ptr<x509_st> m_certificate;
    std::shared_ptr<evp_pkey_st> m_key;
};

} // namespace test_support
