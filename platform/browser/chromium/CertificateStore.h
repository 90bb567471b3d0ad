// The store of certificates that a browser process looks into beside the system's.
#pragma once

#include <string>
#include <vector>

namespace platform {

// Why a browser does not trust the user's own certificates, in plain words; empty when it does.
struct CertificateProblem {
    std::string text;
    bool isOfFile = false; // nothing is known of them, so nothing comes over https
};

// Makes the certificates (PEM) trusted by the browser whose home the directory is. False with the
// reason in plain words.
bool FillCertificateStore(const std::string& home, const std::vector<std::string>& certificates,
                          std::string& error);

} // namespace platform
