#include "system/FileWait.h"

#include <map>
#include <mutex>
#include <utility>

#include <platform/Clock.h>

namespace platform {

namespace {

// All in milliseconds.
constexpr DWORD kFullPatience = 900;
constexpr DWORD kPatienceWithHeld = 10;
constexpr DWORD kRemembered = 10'000;
constexpr DWORD kLongest = 30'000; // also while others get on
constexpr DWORD kPause = 5;

// Which files were given up, and when.
class HeldFiles {
public:
    static HeldFiles& Instance() {
        static HeldFiles files;
        return files;
    }
    void Add(const std::string& name) {
        const std::lock_guard guard(m_lock);
        m_since[name] = GetTickCount();
    }
    void Remove(const std::string& name) {
        const std::lock_guard guard(m_lock);
        m_since.erase(name);
    }
    bool Has(const std::string& name) {
        const std::lock_guard guard(m_lock);
        const auto found = m_since.find(name);
        if (found == m_since.end()) return false;
        if (GetTickCount() - found->second < kRemembered) return true;
        m_since.erase(found);
        return false;
    }

private:
    std::mutex m_lock;
    std::map<std::string, DWORD> m_since;
};

// A file that is not there counts as an unchanging one.
struct stat StatusOf(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) return {};
    return status;
}

bool IsSame(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

} // namespace

FileWait::FileWait(std::string name)
    : m_name(std::move(name)),
      m_patience(HeldFiles::Instance().Has(m_name) ? kPatienceWithHeld : kFullPatience) {}

bool FileWait::GoesOn() {
    const struct stat status = StatusOf(m_name);
    if (m_seen && !IsSame(status, *m_seen)) m_unchanged = 0;
    m_seen = status;
    if (m_unchanged >= m_patience || m_waited >= kLongest) {
        HeldFiles::Instance().Add(m_name);
        return false;
    }
    const DWORD begin = GetTickCount();
    Sleep(kPause);
    const DWORD pause = GetTickCount() - begin;
    m_unchanged += pause;
    m_waited += pause;
    return true;
}

void FileWait::Forget() const {
    HeldFiles::Instance().Remove(m_name);
}

} // namespace platform
