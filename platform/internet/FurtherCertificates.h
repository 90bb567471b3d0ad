// Certificates that the user trusts beside the system's: those of the file ZRHTTP_CA_FILE.
#pragma once

#include <string>
#include <vector>

namespace platform {

struct FurtherCertificates {
    std::vector<std::string> certificates; // in PEM, one by one; empty when none are named
    // Why the file cannot be used, in plain words; empty when it can, or none is named. No page
    // comes over https then: it would be trusted by other rules than the user has set.
    std::string problem;
};

// Reads the file that the setting names, as it is now. It must be a regular file of at most 4 MiB
// with one certificate or more in PEM ("CERTIFICATE" or "TRUSTED CERTIFICATE"), all of them intact;
// other text and other blocks in it do not count.
FurtherCertificates ReadFurtherCertificates();

} // namespace platform
