#include "browser/chromium/ProfileDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

#include <sys/statvfs.h>
#include <unistd.h>

#include "browser/chromium/SpawnProgram.h"

namespace platform {
namespace {

constexpr unsigned long long kRoomBytes = 64ull * 1024 * 1024;
constexpr const char* kCertificateTool = "certutil";

bool HasRoom(const char* pszDirectory) {
    struct statvfs room {};
    return statvfs(pszDirectory, &room) == 0 && access(pszDirectory, W_OK | X_OK) == 0 &&
           static_cast<unsigned long long>(room.f_bavail) * room.f_frsize >= kRoomBytes;
}

std::string MakeBelow(const std::string& directory) {
    std::string name = directory + "/zrhttp-chromium-XXXXXX";
    return mkdtemp(name.data()) ? name : std::string();
}

// The certificates of a PEM file, one by one.
std::vector<std::string> SplitCertificates(const std::string& pem) {
    constexpr std::string_view begin = "-----BEGIN CERTIFICATE-----";
    constexpr std::string_view end = "-----END CERTIFICATE-----";
    std::vector<std::string> certificates;
    for (std::size_t at = pem.find(begin); at != std::string::npos; at = pem.find(begin, at)) {
        const std::size_t stop = pem.find(end, at);
        if (stop == std::string::npos) break;
        certificates.push_back(pem.substr(at, stop + end.size() - at) + "\n");
        at = stop;
    }
    return certificates;
}

std::optional<std::string> ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) return std::nullopt;
    return text.str();
}

} // namespace

std::string MakeProfileDirectory() {
    if (HasRoom("/dev/shm"))
        if (std::string name = MakeBelow("/dev/shm"); !name.empty()) return name;
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && HasRoom(runtime))
        if (std::string name = MakeBelow(runtime); !name.empty()) return name;
    std::error_code error;
    const auto temporary = std::filesystem::temp_directory_path(error);
    return error ? std::string() : MakeBelow(temporary);
}

bool TrustCertificates(const std::string& home, const std::string& pemFile, std::string& error) {
    const auto pem = ReadText(pemFile);
    const auto certificates = pem ? SplitCertificates(*pem) : std::vector<std::string>();
    if (certificates.empty()) {
        error = "no certificates can be read from " + pemFile;
        return false;
    }
    const std::string folder = home + "/.pki/nssdb";
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::string database = "sql:" + folder;
    const std::string one = home + "/certificate.pem";
    bool isDone = RunProgram({kCertificateTool, "-N", "-d", database, "--empty-password"});
    for (std::size_t i = 0; isDone && i < certificates.size(); ++i) {
        std::ofstream(one) << certificates[i];
        isDone = RunProgram({kCertificateTool, "-A", "-d", database, "-n",
                             "further " + std::to_string(i), "-t", "C,,", "-a", "-i", one});
    }
    std::filesystem::remove(one, ignored);
    if (!isDone)
        error = "certutil could not make the certificates of " + pemFile +
                " trusted; is the package libnss3-tools installed?";
    return isDone;
}

} // namespace platform
