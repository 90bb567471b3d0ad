#include <platform/Resources.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include <platform/CodePage.h>

namespace {

// The modules whose string tables are searched, the newest first.
class ModuleList {
public:
    static ModuleList& Instance() {
        static ModuleList& list = *std::make_unique<ModuleList>().release();
        return list;
    }

    void Add(const AFX_EXTENSION_MODULE* module) {
        const std::lock_guard lock(m_lock);
        m_modules.push_back(module);
    }

    // A module may be registered several times; each call ends the latest registration.
    void Remove(const AFX_EXTENSION_MODULE* module) {
        const std::lock_guard lock(m_lock);
        for (auto it = m_modules.rbegin(); it != m_modules.rend(); ++it) {
            if (*it != module) continue;
            m_modules.erase(std::next(it).base());
            return;
        }
    }

    // Converted under the lock: the table may go away once it is no longer listed.
    CString Load(UINT id) const {
        const std::lock_guard lock(m_lock);
        for (auto it = m_modules.rbegin(); it != m_modules.rend(); ++it) {
            const CString text = TextIn(**it, id);
            if (!text.IsEmpty()) return text;
        }
        return CString();
    }

private:
    static CString TextIn(const AFX_EXTENSION_MODULE& module, UINT id) {
        for (const StringResource& resource : module.strings)
            if (resource.id == id) return platform::AnsiFromUtf8(resource.text);
        return CString();
    }

    mutable std::mutex m_lock;
    std::vector<const AFX_EXTENSION_MODULE*> m_modules;
};

CString ProgramFileName() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    // A program replaced while it runs has a link to a name that does not exist.
    if (error || !std::filesystem::exists(program, error)) return program_invocation_short_name;
    return CString(program.filename().string().c_str());
}

} // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state) {
    state.bInitialized = state.moduleName.IsEmpty() ? FALSE : TRUE;
    return state.bInitialized;
}

CDynLinkLibrary::CDynLinkLibrary(const AFX_EXTENSION_MODULE& state) : m_module(&state) {
    ModuleList::Instance().Add(m_module);
}

CDynLinkLibrary::~CDynLinkLibrary() {
    ModuleList::Instance().Remove(m_module);
}

BOOL CString::LoadString(UINT nID) {
    *this = ModuleList::Instance().Load(nID);
    return IsEmpty() ? FALSE : TRUE;
}

AFX_MODULE_STATE* AfxGetModuleState() {
    static AFX_MODULE_STATE state = {ProgramFileName()};
    return &state;
}
