#include "internet/FurtherCertificates.h"

#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <platform/Settings.h>

#include "system/WholeFile.h"

namespace platform {
namespace {

// The whole list of a system's authorities takes a quarter of a megabyte.
constexpr std::size_t kMaxFileBytes = std::size_t{4} * 1024 * 1024;

struct OpensslFree {
    void operator()(void* memory) const { OPENSSL_free(memory); }
    void operator()(BIO* memory) const { BIO_free(memory); }
    void operator()(X509* certificate) const { X509_free(certificate); }
};
template <typename T>
using Openssl = std::unique_ptr<T, OpensslFree>;
using ParsedCertificate = Openssl<X509>;

// One block of a PEM file, whatever it holds.
struct PemBlock {
    std::string name;
    std::string bytes;
};

enum class PemResult { block, end, broken };

PemResult ReadBlock(BIO& file, PemBlock& block) {
    char* pszName = nullptr;
    char* pszHeader = nullptr;
    unsigned char* data = nullptr;
    long length = 0;
    ERR_clear_error();
    if (PEM_read_bio(&file, &pszName, &pszHeader, &data, &length) != 1) {
        const bool isEnd = ERR_GET_REASON(ERR_peek_last_error()) == PEM_R_NO_START_LINE;
        ERR_clear_error();
        return isEnd ? PemResult::end : PemResult::broken;
    }
    const Openssl<char> name(pszName);
    const Openssl<char> header(pszHeader);
    const Openssl<unsigned char> bytes(data);
    block = {pszName, {reinterpret_cast<char*>(data), static_cast<std::size_t>(length)}};
    return PemResult::block;
}

bool IsCertificate(const PemBlock& block) {
    return block.name == PEM_STRING_X509 || block.name == PEM_STRING_X509_OLD ||
           block.name == PEM_STRING_X509_TRUSTED;
}

ParsedCertificate Parse(const PemBlock& block) {
    const auto* at = reinterpret_cast<const unsigned char*>(block.bytes.data());
    const auto length = static_cast<long>(block.bytes.size());
    X509* parsed = block.name == PEM_STRING_X509_TRUSTED ? d2i_X509_AUX(nullptr, &at, length)
                                                         : d2i_X509(nullptr, &at, length);
    ERR_clear_error();
    return ParsedCertificate(parsed);
}

// A "TRUSTED CERTIFICATE" may say what it is not to be trusted for.
bool IsForServers(X509& certificate) {
    return X509_check_trust(&certificate, X509_TRUST_SSL_SERVER, 0) != X509_TRUST_REJECTED;
}

std::string PemOf(X509& certificate) {
    const Openssl<BIO> memory(BIO_new(BIO_s_mem()));
    char* data = nullptr;
    if (!memory || PEM_write_bio_X509(memory.get(), &certificate) != 1) return {};
    const long length = BIO_get_mem_data(memory.get(), &data);
    return {data, static_cast<std::size_t>(length)};
}

// Why not, or empty.
std::string TakeCertificates(const std::string& text, std::vector<std::string>& certificates) {
    const Openssl<BIO> file(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    PemBlock block;
    PemResult result = PemResult::block;
    for (int number = 1; (result = ReadBlock(*file, block)) != PemResult::end; ++number) {
        if (result == PemResult::block && !IsCertificate(block)) continue;
        const ParsedCertificate certificate =
            result == PemResult::block ? Parse(block) : ParsedCertificate();
        if (!certificate) return "its PEM block " + std::to_string(number) + " is broken";
        if (IsForServers(*certificate)) certificates.push_back(PemOf(*certificate));
    }
    return certificates.empty() ? "it holds no certificate in PEM" : "";
}

std::string ReasonNotRead(int error) {
    if (error == EISDIR) return "it is not a regular file";
    if (error == EFBIG) return "it is larger than 4 MiB";
    return std::generic_category().message(error);
}

} // namespace

FurtherCertificates ReadFurtherCertificates() {
    const CString setting = GetSetting("ZRHTTP_CA_FILE").value;
    if (setting.IsEmpty()) return {};
    const std::string name(setting.View());
    FurtherCertificates further;
    std::string text;
    const int error = ReadWholeFile(name, kMaxFileBytes, text);
    const std::string reason =
        error != 0 ? ReasonNotRead(error) : TakeCertificates(text, further.certificates);
    if (!reason.empty())
        further = {{},
                   "the certificates of ZRHTTP_CA_FILE cannot be used: " + name + ": " + reason};
    return further;
}

} // namespace platform
