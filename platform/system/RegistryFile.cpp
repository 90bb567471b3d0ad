#include "system/RegistryFile.h"

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <platform/Diagnostics.h>
#include <platform/LastError.h>
#include <platform/UserPaths.h>

#include "system/OwnedDescriptor.h"
#include "system/RegistrySchema.h"

namespace platform {

namespace {

constexpr int kLargestAsideNumber = 9999;
// The file may vanish or be found damaged between two steps, because another process puts it aside.
constexpr int kAttempts = 4;

// Tells a file from the one that takes its name later.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

std::optional<FileIdentity> IdentityOf(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

void Report(const std::string& name, const char* what, const std::string& detail) {
    CString text;
    text.Format("The registry %s %s %s", name.c_str(), what, detail.c_str());
    ReportDiagnostic(Severity::failure, text);
}

// An empty file is an empty database to SQLite; it is made here because of its mode.
int MakeSureOfFile(const std::string& name) {
    if (IdentityOf(name)) return 0;
    if (errno != ENOENT) return errno;
    MakeDirectory(CString(name.substr(0, name.rfind('/')))); // open() tells whether it is there
    const OwnedDescriptor file(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return file.IsOpen() || errno == EEXIST ? 0 : errno;
}

bool LockForMoving(const std::string& name, const OwnedDescriptor& file) {
    FileWait wait(name);
    while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0)
        if (errno != EWOULDBLOCK || !wait.GoesOn()) return false;
    return true;
}

// A second name that nothing has yet; empty on failure.
std::string LinkToFreeName(const std::string& name) {
    for (int number = 1; number <= kLargestAsideNumber; ++number) {
        const std::string aside = name + ".corrupt-" + std::to_string(number);
        if (link(name.c_str(), aside.c_str()) == 0) return aside;
        if (errno != EEXIST) break;
    }
    return {};
}

// Puts the damaged file aside unless another process was faster. The damaged file itself is the
// lock: whoever holds it and still finds it under its name is the one to move it.
void MoveAside(const std::string& name, const FileIdentity& damaged) {
    const OwnedDescriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen() || !LockForMoving(name, file) || IdentityOf(name) != damaged) return;
    const std::string aside = LinkToFreeName(name);
    if (aside.empty()) return;
    // Its journal must not be taken for the new file's.
    std::rename((name + "-journal").c_str(), (aside + "-journal").c_str());
    if (unlink(name.c_str()) == 0)
        Report(name, "is damaged; a new one was begun and the old one moved to", aside);
}

DWORD ErrorFromSqlite(const SqliteError& error) {
    switch (error.code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ERROR_BUSY;
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return ERROR_ACCESS_DENIED;
    default:
        return error.systemError ? ErrorFromErrno(error.systemError) : ERROR_GEN_FAILURE;
    }
}

DWORD RunOnce(const std::string& name, RegistryAccess access,
              const std::function<DWORD(SqliteDatabase&)>& work) {
    SqliteDatabase database(name);
    MakeSureOfRegistrySchema(database);
    SqliteTransaction transaction(database, access == RegistryAccess::write
                                                ? SqliteTransaction::Kind::write
                                                : SqliteTransaction::Kind::read);
    const DWORD result = work(database);
    if (result != ERROR_SUCCESS) return result;
    transaction.Commit();
    if (access == RegistryAccess::write) database.ForgetWaits();
    return result;
}

bool IsDamage(const SqliteError& error) {
    return error.code == SQLITE_CORRUPT || error.code == SQLITE_NOTADB;
}

bool HasVanished(const SqliteError& error, const std::string& name) {
    return error.code == SQLITE_CANTOPEN && !IdentityOf(name) && errno == ENOENT;
}

} // namespace

DWORD WithRegistryFile(RegistryAccess access, const std::function<DWORD(SqliteDatabase&)>& work) {
    const std::string name = RegistryFileName().GetString();
    SqliteError lastError;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (const int error = MakeSureOfFile(name)) {
            lastError = {SQLITE_CANTOPEN, error};
            break;
        }
        const std::optional<FileIdentity> identity = IdentityOf(name);
        try {
            return RunOnce(name, access, work);
        } catch (const SqliteError& error) {
            lastError = error;
        }
        if (IsDamage(lastError) && identity) {
            MoveAside(name, *identity);
        } else if (!HasVanished(lastError, name)) {
            break;
        }
    }
    Report(name, "cannot be used:", sqlite3_errstr(lastError.code));
    return ErrorFromSqlite(lastError);
}

} // namespace platform
