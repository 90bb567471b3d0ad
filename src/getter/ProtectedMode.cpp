#include "getter/ProtectedMode.h"

#include <optional>

#include <platform/Exceptions.h>
#include <platform/Library.h>

#include "errors/LogRecord.h"
#include "siblings/ZrAbModules.h"
#include "siblings/ZrCbFileSystem.h"

namespace {

constexpr const char* kWrapperFile = "ZrMwMApiWrapper.dll";
constexpr const char* kWrapperExport = "MAPI_IEIsProtectedModeURL";

// S_OK: the URL opens in protected mode. S_FALSE: it does not. Others: the question failed.
using ProtectedModeQuery = HRESULT (*)(const char* pszUrl);

class LoadedLibrary {
public:
    explicit LoadedLibrary(const CString& strPath) : m_module(LoadLibraryA(strPath)) {}
    ~LoadedLibrary() {
        if (m_module) FreeLibrary(m_module);
    }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    bool IsLoaded() const { return m_module != nullptr; }
    FARPROC FindProc(const char* pszName) const { return GetProcAddress(m_module, pszName); }

private:
    HMODULE m_module;
};

std::optional<EZrAbModule> WrapperModule(EZrAbAppGroup eGroup) {
    switch (eGroup) {
    case eAppGroup_1:
    case eAppGroup_2:
        return eModule_ApiWrapper;
    case eAppGroup_3:
        return eModule_ApiWrapperGroup3;
    }
    return std::nullopt;
}

// Nothing when the question could not be put.
std::optional<BOOL> Ask(EZrAbAppGroup eGroup, const CString& strUrl) {
    const auto module = WrapperModule(eGroup);
    if (!module) return std::nullopt;
    const CString directory = CZrAbModules::GetModuleStaticDataPath(eGroup, *module, 1);
    const CString path = directory + kWrapperFile;
    // Without a directory the name alone would load whatever lies in the current one.
    if (directory.IsEmpty() || !CZrCbFileSystem::FileExists(path)) return std::nullopt;
    const LoadedLibrary library(path);
    if (!library.IsLoaded()) return FALSE;
    const FARPROC proc = library.FindProc(kWrapperExport);
    if (!proc) return std::nullopt;
    return reinterpret_cast<ProtectedModeQuery>(proc)(strUrl) == S_OK ? TRUE : FALSE;
}

std::optional<BOOL> AskWithoutExceptions(EZrAbAppGroup eGroup, const CString& strUrl) {
    try {
        return Ask(eGroup, strUrl);
    } catch (CException* exception) {
        exception->Delete();
    } catch (...) {
    }
    return std::nullopt;
}

} // namespace

BOOL AskProtectedMode(EZrAbAppGroup eGroup, const CString& strUrl) {
    const auto answer = AskWithoutExceptions(eGroup, strUrl);
    if (!answer) ZRHB_FAILURE("Exception thrown within method MAPI_IEIsProtectedModeURL", eGroup);
    return answer.value_or(FALSE);
}
