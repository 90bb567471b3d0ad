// The object model's root: identifiers, reference-counted interfaces, smart pointers.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <tuple>
#include <utility>

#include "Export.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

struct GUID {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};
    friend constexpr bool operator==(const GUID&, const GUID&) = default;
    friend constexpr auto operator<=>(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

// Every interface names its identifier as `Iid`. References are counted: whoever is handed a
// pointer through an out-argument owns one reference and releases it exactly once.
struct IUnknown {
    static constexpr IID Iid{0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    // S_OK with an added reference, or E_NOINTERFACE with null.
    virtual HRESULT QueryInterface(REFIID iid, void** ppObject) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;
};
inline constexpr const IID& IID_IUnknown = IUnknown::Iid;

// Owns one reference.
template <class T>
class CComPtr {
public:
    CComPtr() = default;
    CComPtr(std::nullptr_t) {}
    CComPtr(T* pointer) : m_pointer(pointer) {
        if (m_pointer) m_pointer->AddRef();
    }
    CComPtr(const CComPtr& other) : CComPtr(other.m_pointer) {}
    CComPtr(CComPtr&& other) noexcept : m_pointer(std::exchange(other.m_pointer, nullptr)) {}
    template <class TDerived>
    CComPtr(const CComPtr<TDerived>& other) : CComPtr(static_cast<T*>(other.Get())) {}
    CComPtr& operator=(CComPtr other) noexcept {
        std::swap(m_pointer, other.m_pointer);
        return *this;
    }
    ~CComPtr() { Release(); }

    void Release() {
        if (T* pointer = std::exchange(m_pointer, nullptr)) pointer->Release();
    }
    // Takes over a reference that somebody else has counted.
    void Attach(T* pointer) {
        Release();
        m_pointer = pointer;
    }
    T* Detach() { return std::exchange(m_pointer, nullptr); }
    T* Get() const { return m_pointer; }
    T* operator->() const { return m_pointer; }
    T& operator*() const { return *m_pointer; }
    explicit operator bool() const { return m_pointer != nullptr; }
    // For out-arguments; lets go of what was held.
    T** operator&() {
        Release();
        return &m_pointer;
    }
    template <class TOther>
    HRESULT QueryInterface(TOther** ppOther) const {
        return m_pointer->QueryInterface(TOther::Iid, reinterpret_cast<void**>(ppOther));
    }

private:
    T* m_pointer = nullptr;
};

// An object that implements the given interfaces, with a reference count that threads may share.
// Made by MakeObject; it starts with the one reference that MakeObject returns. An interface
// derived from another answers for that one too when it is listed under Extra in AlsoAnswers.
template <class... TInterfaces>
class ComObject : public TInterfaces... {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT QueryInterface(REFIID iid, void** ppObject) override {
        if (!ppObject) return E_POINTER;
        *ppObject = nullptr;
        if (iid == IUnknown::Iid) *ppObject = Identity();
        ((!*ppObject && iid == TInterfaces::Iid
              ? static_cast<void>(*ppObject = static_cast<TInterfaces*>(this))
              : static_cast<void>(0)),
         ...);
        if (!*ppObject) *ppObject = FindOther(iid);
        if (!*ppObject) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG Release() override {
        const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~ComObject() = default;
    // Further identifiers that the object answers (a base interface of a listed one, an event
    // interface that is a plain dispatch interface). No reference is added.
    virtual void* FindOther(REFIID) { return nullptr; }
    IUnknown* Identity() {
        using First = std::tuple_element_t<0, std::tuple<TInterfaces...>>;
        return static_cast<First*>(this);
    }

private:
    std::atomic<ULONG> m_references{1};
};

template <class T, class... TArguments>
CComPtr<T> MakeObject(TArguments&&... arguments) {
    CComPtr<T> object;
    object.Attach(new T(std::forward<TArguments>(arguments)...));
    return object;
}

ZRHB_EXPORT_END
