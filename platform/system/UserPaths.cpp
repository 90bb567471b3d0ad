#include <platform/UserPaths.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <platform/LastError.h>

namespace platform {
namespace {

constexpr const char* kApplication = "zrhttpbase3";

CString Below(const CString& strDirectory, const char* pszName) {
    const bool hasSlash = strDirectory.Right(1) == "/";
    return strDirectory + (hasSlash ? "" : "/") + pszName;
}

// The variable's value; empty when it is not set.
CString Environment(const char* pszName) {
    return std::getenv(pszName);
}

// $ZRHTTP_HOME, whole even when the current directory changes later; empty when it is not set.
CString ChosenRoot() {
    const CString strRoot = Environment("ZRHTTP_HOME");
    if (strRoot.IsEmpty()) return strRoot;
    std::error_code error;
    const auto absolute = std::filesystem::absolute(strRoot.GetString(), error);
    return error ? strRoot : CString(absolute.lexically_normal().c_str());
}

CString HomeDirectory() {
    const CString strHome = Environment("HOME");
    if (!strHome.IsEmpty()) return strHome;
    std::vector<char> buffer(16 * 1024);
    passwd entry = {};
    passwd* found = nullptr;
    ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
    return found ? CString(found->pw_dir) : CString("/");
}

// The base directory rules ask for relative values to be ignored.
CString BaseDirectory(const char* pszVariable, const char* pszBelowHome) {
    const CString strBase = Environment(pszVariable);
    if (!strBase.IsEmpty() && strBase.GetAt(0) == '/') return Below(strBase, kApplication);
    return Below(Below(HomeDirectory(), pszBelowHome), kApplication);
}

CString ConfigurationBase() {
    return BaseDirectory("XDG_CONFIG_HOME", ".config");
}
CString DataBase() {
    return BaseDirectory("XDG_DATA_HOME", ".local/share");
}
CString StateBase() {
    return BaseDirectory("XDG_STATE_HOME", ".local/state");
}

CString Place(const char* pszName, CString (*pfnBase)()) {
    const CString strRoot = ChosenRoot();
    return Below(strRoot.IsEmpty() ? pfnBase() : strRoot, pszName);
}

bool Refuse(DWORD dwError) {
    SetLastError(dwError);
    return false;
}

bool IsAsciiLetter(char ch) {
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z');
}

bool HasDrive(std::string_view path) {
    return path.size() >= 2 && IsAsciiLetter(path[0]) && path[1] == ':';
}

// Splits at slashes and backslashes and resolves "." and ".."; false when a ".." leaves the root.
bool ResolveParts(std::string_view path, std::vector<std::string_view>& parts) {
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find_first_of("\\/", begin), path.size());
        const std::string_view part = path.substr(begin, end - begin);
        begin = end + 1;
        if (part == "..") {
            if (parts.empty()) return false;
            parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
    }
    return true;
}

bool MakeOneDirectory(const std::string& path) {
    if (::mkdir(path.c_str(), S_IRWXU) == 0) return true;
    const int reason = errno;
    struct stat status = {};
    // Judged by what is there: a directory above may exist and yet not be ours to make.
    if (::stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) return true;
        return Refuse(ERROR_ALREADY_EXISTS);
    }
    return Refuse(ErrorFromErrno(reason));
}

} // namespace

CString SettingsDirectory() {
    return Place("settings", ConfigurationBase);
}
CString DataDirectory() {
    return Place("data", DataBase);
}
CString LogDirectory() {
    return Place("log", StateBase);
}
CString RegistryFileName() {
    return Place("registry.sqlite", DataBase);
}

bool LocalFileName(const char* pszPath, CString& strLocal) {
    if (!pszPath) return Refuse(ERROR_INVALID_PARAMETER);
    const std::string_view path = pszPath;
    if (!HasDrive(path)) {
        strLocal = CString(path);
        return true;
    }
    const bool isDriveC = path[0] == 'c' || path[0] == 'C';
    std::vector<std::string_view> parts;
    if (!isDriveC || !ResolveParts(path.substr(2), parts)) return Refuse(ERROR_ACCESS_DENIED);
    strLocal = Place("drive_c", DataBase);
    MakeDirectory(strLocal); // the drive is always there; what lies on it is the client's business
    for (const std::string_view part : parts)
        strLocal += CString("/") + CString(part);
    return true;
}

bool MakeDirectory(const CString& strPath) {
    CString strLocal;
    if (!LocalFileName(strPath, strLocal)) return false;
    const std::string path(strLocal.View());
    if (path.empty()) return Refuse(ERROR_INVALID_PARAMETER);
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1))
        if (!MakeOneDirectory(path.substr(0, slash))) return false;
    return MakeOneDirectory(path);
}

bool IsReadableDirectory(const CString& strPath) {
    CString strLocal;
    if (!LocalFileName(strPath, strLocal)) return false;
    DIR* const directory = ::opendir(strLocal);
    if (!directory) return Refuse(ErrorFromErrno(errno));
    ::closedir(directory);
    return true;
}

} // namespace platform
