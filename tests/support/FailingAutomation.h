// Automation in which one kind of call fails.
#pragma once

#include <platform/Automation.h>

namespace test_support {

class FailingAutomation final : public platform::AutomationService {
public:
    enum class Call { none, initialize, createInstance, createStream, cloneStream, attachControl };

    explicit FailingAutomation(Call failing);
    HRESULT Initialize() override;
    HRESULT CreateInstance(REFCLSID clsid, DWORD context, REFIID iid, void** object) override;
    HRESULT CreateMemoryStream(IStream** stream) override;
    HRESULT AttachControl(IUnknown* control, HWND window, IUnknown** container) override;

private:
    Call m_failing;
    platform::AutomationService& m_real;
    platform::ScopedService<platform::AutomationService> m_installed;
};

} // namespace test_support
