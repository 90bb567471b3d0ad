#include "support/FaultPlan.h"

#include <platform/LastError.h>

namespace test_support {

namespace {

class FaultyStream final : public ComObject<IStream> {
public:
    FaultyStream(CComPtr<IStream> real, FaultPlan* plan) : m_real(std::move(real)), m_plan(plan) {}
    HRESULT Read(void* buffer, ULONG count, ULONG* read) override {
        return m_plan->Fails("Stream.Read") ? E_FAIL : m_real->Read(buffer, count, read);
    }
    HRESULT Write(const void* data, ULONG count, ULONG* written) override {
        return m_plan->Fails("Stream.Write") ? E_FAIL : m_real->Write(data, count, written);
    }
    HRESULT Clone(IStream** stream) override {
        if (m_plan->Fails("Stream.Clone")) return E_OUTOFMEMORY;
        CComPtr<IStream> clone;
        const HRESULT hr = m_real->Clone(&clone);
        if (SUCCEEDED(hr)) *stream = MakeObject<FaultyStream>(clone, m_plan).Detach();
        return hr;
    }

private:
    const CComPtr<IStream> m_real;
    FaultPlan* const m_plan;
};

} // namespace

bool FaultPlan::Fails(const std::string& call) {
    const std::lock_guard lock(m_lock);
    if (!m_failed.empty() || m_left-- > 0) return false;
    m_failed = call;
    return true;
}

std::string FaultPlan::Failed() const {
    const std::lock_guard lock(m_lock);
    return m_failed;
}

HRESULT FaultyServices::Initialize() {
    return m_plan.Fails("Initialize") ? E_OUTOFMEMORY : AutomationService::Real().Initialize();
}

HRESULT FaultyServices::CreateInstance(REFCLSID clsid, DWORD context, REFIID iid, void** object) {
    if (m_plan.Fails("CreateInstance")) return REGDB_E_CLASSNOTREG;
    return AutomationService::Real().CreateInstance(clsid, context, iid, object);
}

HRESULT FaultyServices::CreateMemoryStream(IStream** stream) {
    if (m_plan.Fails("CreateMemoryStream")) return E_OUTOFMEMORY;
    CComPtr<IStream> real;
    const HRESULT hr = AutomationService::Real().CreateMemoryStream(&real);
    if (SUCCEEDED(hr)) *stream = MakeObject<FaultyStream>(real, &m_plan).Detach();
    return hr;
}

HRESULT FaultyServices::AttachControl(IUnknown* control, HWND window, IUnknown** container) {
    if (m_plan.Fails("AttachControl")) return E_FAIL;
    return AutomationService::Real().AttachControl(control, window, container);
}

HWND FaultyServices::Create(const platform::WindowRequest& request) {
    if (!m_plan.Fails("CreateWindow"))
        return m_created.emplace_back(WindowFactory::Real().Create(request));
    SetLastError(ERROR_BUSY);
    return nullptr;
}

void FaultyServices::DestroyWindows() {
    for (HWND window : m_created)
        if (IsWindow(window)) DestroyWindow(window);
}

DWORD FaultyServices::KeyExists(HKEY root, const CString& key) {
    return m_plan.Fails("KeyExists") ? ERROR_BUSY : RegistryStore::Real().KeyExists(root, key);
}

DWORD FaultyServices::ChildKeys(HKEY root, const CString& key, std::vector<CString>& names) {
    return m_plan.Fails("ChildKeys") ? ERROR_BUSY
                                     : RegistryStore::Real().ChildKeys(root, key, names);
}

DWORD FaultyServices::GetValue(HKEY root, const CString& key, const CString& name,
                               platform::RegistryValue& value) {
    return m_plan.Fails("GetValue") ? ERROR_BUSY
                                    : RegistryStore::Real().GetValue(root, key, name, value);
}

DWORD FaultyServices::SetValue(HKEY root, const CString& key, const CString& name,
                               const platform::RegistryValue& value) {
    return m_plan.Fails("SetValue") ? ERROR_BUSY
                                    : RegistryStore::Real().SetValue(root, key, name, value);
}

DWORD FaultyServices::CopyTree(HKEY sourceRoot, const CString& source, HKEY targetRoot,
                               const CString& target) {
    return m_plan.Fails("CopyTree")
               ? ERROR_BUSY
               : RegistryStore::Real().CopyTree(sourceRoot, source, targetRoot, target);
}

DWORD FaultyServices::DeleteTree(HKEY root, const CString& key) {
    return m_plan.Fails("DeleteTree") ? ERROR_BUSY : RegistryStore::Real().DeleteTree(root, key);
}

HMODULE FaultyServices::Load(const char* fileName) {
    return m_plan.Fails("Load") ? nullptr : LibraryLoader::Real().Load(fileName);
}

FARPROC FaultyServices::FindProc(HMODULE module, const char* name) {
    return m_plan.Fails("FindProc") ? nullptr : LibraryLoader::Real().FindProc(module, name);
}

BOOL FaultyServices::Free(HMODULE module) {
    const BOOL isFreed = LibraryLoader::Real().Free(module);
    return m_plan.Fails("Free") ? FALSE : isFreed;
}

std::shared_ptr<platform::WorkerThread> FaultyServices::Start(std::function<void()> procedure) {
    if (!m_plan.Fails("Start")) return WorkerThreads::Real().Start(std::move(procedure));
    SetLastError(ERROR_BUSY);
    return nullptr;
}

} // namespace test_support
