#include "internet/TlsContext.h"

#include <openssl/ssl.h>

namespace platform {
namespace {

// A connection may end only after the peer has said so (close_notify; RFC 8446, 6.1): an attacker
// can cut it. OpenSSL takes another end for an error, unless it is told not to, and when it learns
// of the end: the transfer library tells it not to, and that the connection is never at its end.
// Where a length or the last chunk tells the end of the reply, nobody reads on to this one.

char s_end = 0; // what marks a connection that is at its end

long TellEnd(BIO* connection, int operation, const char*, std::size_t, int command, long,
             int result, std::size_t*) {
    if (operation == (BIO_CB_READ | BIO_CB_RETURN) && result == 0 && !BIO_should_retry(connection))
        BIO_set_callback_arg(connection, &s_end);
    const bool isQuestion = operation == (BIO_CB_CTRL | BIO_CB_RETURN) && command == BIO_CTRL_EOF;
    return isQuestion && BIO_get_callback_arg(connection) ? 1 : result;
}

void OnProgress(const SSL* session, int what, int) {
    if (what & SSL_CB_HANDSHAKE_DONE) BIO_set_callback_ex(SSL_get_rbio(session), &TellEnd);
}

void HeedTheMissingEnd(SSL_CTX* context) {
    SSL_CTX_clear_options(context, SSL_OP_IGNORE_UNEXPECTED_EOF);
    SSL_CTX_set_info_callback(context, &OnProgress);
}

CURLcode SetUpContext(CURL*, void* context, void*) {
    HeedTheMissingEnd(static_cast<SSL_CTX*>(context));
    return CURLE_OK;
}

} // namespace

void SetUpTls(CURL* easy) {
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_FUNCTION, &SetUpContext);
}

} // namespace platform
