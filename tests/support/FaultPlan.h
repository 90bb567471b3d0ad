// Services that forward every call but one, which fails as that service fails.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <platform/Automation.h>
#include <platform/Library.h>
#include <platform/Registry.h>
#include <platform/Services.h>
#include <platform/Thread.h>
#include <platform/Window.h>

namespace test_support {

// Which call fails: the one with this number, counted over all services. Any thread.
class FaultPlan {
public:
    explicit FaultPlan(std::size_t number) : m_left(number) {}
    bool Fails(const std::string& call);
    // For what asks by a function of its own.
    std::function<bool(const std::string&)> Hook() {
        return [this](const std::string& call) { return Fails(call); };
    }
    // The call that failed; empty when there were fewer.
    std::string Failed() const;

private:
    mutable std::mutex m_lock;
    std::size_t m_left;
    std::string m_failed;
};

// Installs itself in place of the real services.
class FaultyServices final : private platform::AutomationService,
                             private platform::WindowFactory,
                             private platform::RegistryStore,
                             private platform::LibraryLoader,
                             private platform::WorkerThreads {
public:
    explicit FaultyServices(FaultPlan& plan) : m_plan(plan) {}
    // Ends the windows that were created here and still exist.
    void DestroyWindows();

private:
    HRESULT Initialize() override;
    HRESULT CreateInstance(REFCLSID clsid, DWORD context, REFIID iid, void** object) override;
    HRESULT CreateMemoryStream(IStream** stream) override;
    HRESULT AttachControl(IUnknown* control, HWND window, IUnknown** container) override;

    HWND Create(const platform::WindowRequest& request) override;

    DWORD KeyExists(HKEY root, const CString& key) override;
    DWORD ChildKeys(HKEY root, const CString& key, std::vector<CString>& names) override;
    DWORD GetValue(HKEY root, const CString& key, const CString& name,
                   platform::RegistryValue& value) override;
    DWORD SetValue(HKEY root, const CString& key, const CString& name,
                   const platform::RegistryValue& value) override;
    DWORD CopyTree(HKEY sourceRoot, const CString& source, HKEY targetRoot,
                   const CString& target) override;
    DWORD DeleteTree(HKEY root, const CString& key) override;

    HMODULE Load(const char* fileName) override;
    FARPROC FindProc(HMODULE module, const char* name) override;
    BOOL Free(HMODULE module) override;

    std::shared_ptr<platform::WorkerThread> Start(std::function<void()> procedure) override;

    FaultPlan& m_plan;
    std::vector<HWND> m_created;
    platform::ScopedService<platform::AutomationService> m_automation{*this};
    platform::ScopedService<platform::WindowFactory> m_windows{*this};
    platform::ScopedService<platform::RegistryStore> m_registry{*this};
    platform::ScopedService<platform::LibraryLoader> m_libraries{*this};
    platform::ScopedService<platform::WorkerThreads> m_workers{*this};
};

} // namespace test_support
