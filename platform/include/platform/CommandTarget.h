// Framework command targets: objects whose member functions automation calls, here as sinks of an
// event interface.
#pragma once

#include <span>
#include <tuple>
#include <type_traits>

#include "Automation.h"
#include "Export.h"

ZRHB_EXPORT_BEGIN

// A target that has called EnableAutomation can be advised on a connection point. Its dispatch
// object is counted on its own: connections may hold that longer than the target lives, and what
// they call then is dropped. A member function may destroy its target. One thread.
class CCmdTarget {
public:
    CCmdTarget(const CCmdTarget&) = delete;
    CCmdTarget& operator=(const CCmdTarget&) = delete;
    virtual ~CCmdTarget();

    // Null before EnableAutomation; with bAddRef the caller owns a reference.
    IDispatch* GetIDispatch(BOOL bAddRef) const;

protected:
    CCmdTarget();

    // A member and how it is called. The call checks the arguments and fails without calling when
    // they do not fit; pArgErr (may be null) then receives the index of the first that does not.
    struct DispatchEntry {
        DISPID member;
        HRESULT (*call)(CCmdTarget& target, const DISPPARAMS& params, UINT* pArgErr);
    };

    // The entry of a member function: its parameter types are those of the event, of IDispatch*,
    // IDispatch**, VARIANT*, VARIANT_BOOL* (by reference, null when the source passes none) and
    // BOOL.
    template <auto Function>
    static constexpr DispatchEntry DispFunctionId(DISPID member) {
        return {member, &Call<Function>};
    }

    virtual std::span<const DispatchEntry> GetDispatchMap() const = 0;
    // The event interface that the dispatch object answers to beside IDispatch.
    virtual BOOL GetDispatchIID(IID* pIid) const = 0;

    void EnableAutomation();
    // From now on nothing is called, whoever holds the dispatch object. The destructor does this
    // as well; a target that lets go of its sources while it is destroyed does it first.
    void ExternalDisconnect();

private:
    class DispatchObject;

    static bool Take(const VARIANT& argument, IDispatch*& value);
    static bool Take(const VARIANT& argument, IDispatch**& value);
    static bool Take(const VARIANT& argument, VARIANT*& value);
    static bool Take(const VARIANT& argument, VARIANT_BOOL*& value);
    static bool Take(const VARIANT& argument, BOOL& value);

    template <class T>
    struct Signature;
    template <class TTarget, class... TArguments>
    struct Signature<void (TTarget::*)(TArguments...)> {
        using Target = TTarget;
        using Arguments = std::tuple<TArguments...>;
    };

    template <auto Function>
    static HRESULT Call(CCmdTarget& target, const DISPPARAMS& params, UINT* pArgErr) {
        using Types = Signature<decltype(Function)>;
        typename Types::Arguments arguments;
        constexpr UINT count = std::tuple_size_v<typename Types::Arguments>;
        if (params.cArgs != count) return DISP_E_BADPARAMCOUNT;
        UINT left = count; // the last argument comes first
        const auto takeNext = [&](auto& value) { return Take(params.rgvarg[--left], value); };
        const bool isFitting =
            std::apply([&](auto&... values) { return (takeNext(values) && ...); }, arguments);
        if (!isFitting) {
            if (pArgErr) *pArgErr = left;
            return DISP_E_TYPEMISMATCH;
        }
        auto& self = static_cast<typename Types::Target&>(target);
        std::apply([&](auto... values) { (self.*Function)(values...); }, arguments);
        return S_OK;
    }

    CComPtr<DispatchObject> m_dispatch;
};

ZRHB_EXPORT_END
