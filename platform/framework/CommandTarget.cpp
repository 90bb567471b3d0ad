#include <platform/CommandTarget.h>

#include <algorithm>

namespace {

// Takes what the variant stores when it is of the type wanted.
template <class T>
bool TakeOfType(VARTYPE vt, const VARIANT& argument, T VARIANT::*stored, T& value) {
    if (argument.vt != vt) return false;
    value = argument.*stored;
    return true;
}

} // namespace

// What connections hold. It loses its target when that goes.
class CCmdTarget::DispatchObject final : public ComObject<IDispatch> {
public:
    DispatchObject(CCmdTarget& target, REFIID eventInterface)
        : m_target(&target), m_eventInterface(eventInterface) {}

    void LoseTarget() { m_target = nullptr; }

    HRESULT Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* pParams, VARIANT*,
                   EXCEPINFO*, UINT* pArgErr) override {
        if (!m_target) return RPC_E_DISCONNECTED;
        if (!pParams) return E_POINTER;
        if (!(flags & DISPATCH_METHOD)) return DISP_E_MEMBERNOTFOUND;
        const auto map = m_target->GetDispatchMap();
        const auto entry =
            std::ranges::find_if(map, [&](const auto& each) { return each.member == member; });
        if (entry == map.end()) return DISP_E_MEMBERNOTFOUND;
        return entry->call(*m_target, *pParams, pArgErr);
    }

private:
    void* FindOther(REFIID iid) override {
        return iid == m_eventInterface ? static_cast<IDispatch*>(this) : nullptr;
    }

    CCmdTarget* m_target;
    const IID m_eventInterface;
};

CCmdTarget::CCmdTarget() = default;

CCmdTarget::~CCmdTarget() {
    ExternalDisconnect();
}

IDispatch* CCmdTarget::GetIDispatch(BOOL bAddRef) const {
    return bAddRef ? CComPtr<DispatchObject>(m_dispatch).Detach() : m_dispatch.Get();
}

void CCmdTarget::EnableAutomation() {
    IID eventInterface = IID_IDispatch;
    GetDispatchIID(&eventInterface);
    m_dispatch = MakeObject<DispatchObject>(*this, eventInterface);
}

void CCmdTarget::ExternalDisconnect() {
    if (m_dispatch) m_dispatch->LoseTarget();
}

bool CCmdTarget::Take(const VARIANT& argument, IDispatch*& value) {
    return TakeOfType(VT_DISPATCH, argument, &VARIANT::pdispVal, value);
}

bool CCmdTarget::Take(const VARIANT& argument, IDispatch**& value) {
    return TakeOfType(VT_BYREF | VT_DISPATCH, argument, &VARIANT::ppdispVal, value);
}

bool CCmdTarget::Take(const VARIANT& argument, VARIANT*& value) {
    return TakeOfType(VT_BYREF | VT_VARIANT, argument, &VARIANT::pvarVal, value);
}

bool CCmdTarget::Take(const VARIANT& argument, VARIANT_BOOL*& value) {
    return TakeOfType(VT_BYREF | VT_BOOL, argument, &VARIANT::pboolVal, value);
}

bool CCmdTarget::Take(const VARIANT& argument, BOOL& value) {
    if (argument.vt != VT_BOOL) return false;
    value = argument.boolVal != VARIANT_FALSE ? TRUE : FALSE;
    return true;
}
