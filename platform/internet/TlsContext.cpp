#include "internet/TlsContext.h"

#include <memory>

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace platform {
namespace {

// A connection may end only after the peer has said so (close_notify; RFC 8446, 6.1): an attacker
// can cut it. OpenSSL takes another end for an error, unless it is told not to, and when it learns
// of the end: the transfer library tells it not to, and that the connection is never at its end.
// Where a length or the last chunk tells the end of the reply, nobody reads on to this one.

char s_end = 0; // what marks a connection that is at its end

long TellEnd(BIO* connection, int operation, const char*, std::size_t, int command, long,
             int result, std::size_t*) {
    if (operation == (BIO_CB_READ | BIO_CB_RETURN) && result == 0 &&
        !BIO_should_retry(connection)) {
        BIO_set_callback_arg(connection, &s_end);
        return -1; // what OpenSSL says of it is lost where a proxy's connection lies below
    }
    if (operation == (BIO_CB_CTRL | BIO_CB_RETURN) && command == BIO_CTRL_EOF)
        return BIO_get_callback_arg(connection) ? 1 : 0;
    return result;
}

// HTTP/2 tells the end of each reply itself, and the transfer library reads on behind it.
bool IsHttp2(const SSL* session) {
    const unsigned char* name = nullptr;
    unsigned length = 0;
    SSL_get0_alpn_selected(session, &name, &length);
    return length == 2 && name[0] == 'h' && name[1] == '2';
}

void HeedTheMissingEnd(SSL* session) {
    SSL_clear_options(session, SSL_OP_IGNORE_UNEXPECTED_EOF);
    BIO_set_callback_ex(SSL_get_rbio(session), &TellEnd);
}

void OnProgress(const SSL* session, int what, int) {
    if ((what & SSL_CB_HANDSHAKE_DONE) && !IsHttp2(session))
        HeedTheMissingEnd(const_cast<SSL*>(session)); // which is the transfer library's
}

// A name or an address as certificates name servers (RFC 9525, 3).
bool NamesServer(const X509* certificate) {
    const std::unique_ptr<GENERAL_NAMES, decltype(&GENERAL_NAMES_free)> names(
        static_cast<GENERAL_NAMES*>(
            X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)),
        &GENERAL_NAMES_free);
    for (int i = 0; i < sk_GENERAL_NAME_num(names.get()); ++i) {
        const int type = sk_GENERAL_NAME_value(names.get(), i)->type;
        if (type == GEN_DNS || type == GEN_IPADD) return true;
    }
    return false;
}

// Called for each certificate of the chain, the server's own last.
int CheckNames(int isTrusted, X509_STORE_CTX* chain) {
    // What has been put down on the way would be taken for the reason.
    if (isTrusted == 0) ERR_clear_error();
    if (isTrusted == 0 || X509_STORE_CTX_get_error_depth(chain) > 0) return isTrusted;
    if (NamesServer(X509_STORE_CTX_get_current_cert(chain))) return isTrusted;
    X509_STORE_CTX_set_error(chain, X509_V_ERR_HOSTNAME_MISMATCH);
    return 0;
}

// The transfer library compares the host with the certificate's names, and with its common name
// where it has none, which says nothing of whose it is.
void IgnoreTheCommonName(SSL_CTX* context) {
    SSL_CTX_set_verify(context, SSL_CTX_get_verify_mode(context), &CheckNames);
}

CURLcode SetUpContext(CURL*, void* context, void*) {
    SSL_CTX_set_info_callback(static_cast<SSL_CTX*>(context), &OnProgress);
    IgnoreTheCommonName(static_cast<SSL_CTX*>(context));
    return CURLE_OK;
}

} // namespace

void SetUpTls(CURL* easy) {
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_FUNCTION, &SetUpContext);
}

} // namespace platform
