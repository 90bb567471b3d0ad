#include "browser/chromium/CertificateStore.h"

#include <filesystem>
#include <fstream>

#include "browser/chromium/SpawnProgram.h"

namespace platform {
namespace {

constexpr const char* kCertificateTool = "certutil";

// As an authority and, for one that a server has signed itself, as that server's.
constexpr const char* kTrust = "CP,,";

// One command of the tool for each certificate, which lies in a file of its own beside.
bool WriteBatch(const std::string& folder, const std::vector<std::string>& certificates) {
    std::ofstream batch(folder + "/batch");
    for (std::size_t i = 0; i < certificates.size(); ++i) {
        const std::string one = folder + "/" + std::to_string(i) + ".pem";
        if (!(std::ofstream(one) << certificates[i]).flush()) return false;
        batch << "-A -n \"further " << i << "\" -t \"" << kTrust << "\" -a -i " << one << "\n";
    }
    return static_cast<bool>(batch.flush());
}

} // namespace

bool FillCertificateStore(const std::string& home, const std::vector<std::string>& certificates,
                          std::string& error) {
    const std::string folder = home + "/.pki/nssdb";
    const std::string work = home + "/certificates";
    const std::string database = "sql:" + folder;
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    std::filesystem::create_directories(work, ignored);
    const bool isDone = WriteBatch(work, certificates) &&
                        RunProgram({kCertificateTool, "-N", "-d", database, "--empty-password"}) &&
                        RunProgram({kCertificateTool, "-B", "-d", database, "-i", work + "/batch"});
    std::filesystem::remove_all(work, ignored);
    if (!isDone)
        error = "certutil could not make the certificates of ZRHTTP_CA_FILE trusted; is the "
                "package libnss3-tools installed?";
    return isDone;
}

} // namespace platform
