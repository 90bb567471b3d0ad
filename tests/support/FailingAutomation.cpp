#include "support/FailingAutomation.h"

namespace test_support {

namespace {

class UnclonableStream final : public ComObject<IStream> {
public:
    HRESULT Read(void*, ULONG, ULONG*) override { return E_FAIL; }
    HRESULT Write(const void*, ULONG, ULONG*) override { return E_FAIL; }
    HRESULT Clone(IStream**) override { return E_OUTOFMEMORY; }
};

} // namespace

FailingAutomation::FailingAutomation(Call failing)
    : m_failing(failing), m_real(platform::Current<platform::AutomationService>()),
      m_installed(*this) {}

HRESULT FailingAutomation::Initialize() {
    return m_failing == Call::initialize ? E_OUTOFMEMORY : m_real.Initialize();
}

HRESULT FailingAutomation::CreateInstance(REFCLSID clsid, DWORD context, REFIID iid,
                                          void** object) {
    if (m_failing == Call::createInstance) return REGDB_E_CLASSNOTREG;
    return m_real.CreateInstance(clsid, context, iid, object);
}

HRESULT FailingAutomation::CreateMemoryStream(IStream** stream) {
    if (m_failing == Call::createStream) return E_OUTOFMEMORY;
    if (m_failing != Call::cloneStream) return m_real.CreateMemoryStream(stream);
    *stream = MakeObject<UnclonableStream>().Detach();
    return S_OK;
}

HRESULT FailingAutomation::AttachControl(IUnknown* control, HWND window, IUnknown** container) {
    if (m_failing == Call::attachControl) return E_FAIL;
    return m_real.AttachControl(control, window, container);
}

} // namespace test_support
