#include <platform/Library.h>

#include <memory>

#include <dlfcn.h>
#include <link.h>

#include <platform/LastError.h>
#include <platform/UserPaths.h>

namespace platform {
namespace {

void* HandleOf(HMODULE hModule) {
    return hModule;
}

// The dynamic linker also looks through the libraries that this one needs; their functions are no
// exports of it.
bool IsDefinedBy(HMODULE hModule, const void* symbol) {
    link_map* module = nullptr;
    void* owner = nullptr;
    Dl_info info = {};
    return ::dlinfo(HandleOf(hModule), RTLD_DI_LINKMAP, &module) == 0 &&
           ::dladdr1(symbol, &info, &owner, RTLD_DL_LINKMAP) != 0 && owner == module;
}

class SystemLoader : public LibraryLoader {
public:
    HMODULE Load(const char* pszFileName) override {
        CString strLocal;
        if (!LocalFileName(pszFileName, strLocal) || strLocal.IsEmpty()) return NotFound();
        // Without a slash the dynamic linker would search its own directories.
        if (strLocal.Find('/') < 0) strLocal = "./" + strLocal;
        void* const handle = ::dlopen(strLocal, RTLD_NOW | RTLD_LOCAL);
        return handle ? static_cast<HMODULE>(handle) : NotFound();
    }

    FARPROC FindProc(HMODULE hModule, const char* pszName) override {
        void* const symbol = hModule ? ::dlsym(HandleOf(hModule), pszName) : nullptr;
        if (symbol && IsDefinedBy(hModule, symbol)) return reinterpret_cast<FARPROC>(symbol);
        SetLastError(hModule ? ERROR_PROC_NOT_FOUND : ERROR_INVALID_HANDLE);
        return nullptr;
    }

    BOOL Free(HMODULE hModule) override {
        if (hModule && ::dlclose(HandleOf(hModule)) == 0) return TRUE;
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }

private:
    static HMODULE NotFound() {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
};

} // namespace

LibraryLoader& LibraryLoader::Real() {
    static SystemLoader& loader = *std::make_unique<SystemLoader>().release();
    return loader;
}

} // namespace platform

HMODULE LoadLibraryA(const char* pszFileName) {
    return platform::Current<platform::LibraryLoader>().Load(pszFileName);
}

FARPROC GetProcAddress(HMODULE hModule, const char* pszName) {
    return platform::Current<platform::LibraryLoader>().FindProc(hModule, pszName);
}

BOOL FreeLibrary(HMODULE hModule) {
    return platform::Current<platform::LibraryLoader>().Free(hModule);
}
