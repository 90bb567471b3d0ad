#include "internet/TlsContext.h"

#include <openssl/ssl.h>

namespace platform {
namespace {

// The transfer library takes the end of a connection for the end of the reply, also when the peer
// has not said that it ends here (close_notify; RFC 9112, 9.8). Where a length or the last chunk
// tells the end, nobody reads on to this one.
void HeedTheMissingEnd(SSL_CTX* context) {
    SSL_CTX_clear_options(context, SSL_OP_IGNORE_UNEXPECTED_EOF);
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
