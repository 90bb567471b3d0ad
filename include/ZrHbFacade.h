// The shape that all exported classes with state share: a pointer to the implementation object, a
// copy guard, and three virtual functions in this order.
//
// A class derived from an exported one may give it another implementation object, or none: every
// operation then answers with the result that it has for that.
#pragma once

#include <memory>
#include <utility>

#include "platform/Export.h"

ZRHB_EXPORT_BEGIN

// TFacade: the exported class. TImpl: its implementation object, complete only where the exported
// class is implemented; there DestroyImpl deletes one.
template <class TFacade, class TImpl>
class CZrHbFacade {
    struct Destroyer {
        Destroyer() = default;
        Destroyer(std::default_delete<TImpl>) {} // for what std::make_unique has made
        void operator()(TImpl* pImpl) const { TFacade::DestroyImpl(pImpl); }
    };

public:
    // Returns the object itself; part of the assignment protocol, copies nothing.
    virtual TFacade& CopyObject() { return static_cast<TFacade&>(*this); }

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }

public:
    virtual ~CZrHbFacade() = default;
    CZrHbFacade(const CZrHbFacade&) = delete;
    CZrHbFacade& operator=(const CZrHbFacade&) = delete;

protected:
    using ImplPtr = std::unique_ptr<TImpl, Destroyer>;

    CZrHbFacade() = default;

    // Takes the implementation object in place of the one before and clears the guard; 1 when there
    // is one, 0 for null.
    int CreateImpl(ImplPtr pImpl) {
        m_pImpl = std::move(pImpl);
        m_nCopyGuard = 0;
        return m_pImpl ? 1 : 0;
    }
    // Takes a copy of another facade's implementation object, if it has one.
    void CreateCopy(const CZrHbFacade& other) {
        if (other.m_pImpl) CreateImpl(std::make_unique<TImpl>(*other.m_pImpl));
    }
    void AssignCopy(const CZrHbFacade& other) {
        Assign([&] {
            if (m_pImpl && other.m_pImpl) *m_pImpl = *other.m_pImpl;
        });
    }
    TImpl* GetImpl() const { return m_pImpl.get(); }
    // 1, or 0 when there was none.
    int DeleteImpl() {
        const ImplPtr pImpl = std::move(m_pImpl);
        return pImpl ? 1 : 0;
    }
    // Runs copyContent unless an assignment of this object is under way already, then the
    // facade's own self-assignment under the guard.
    template <class TCopyContent>
    void Assign(TCopyContent copyContent) {
        if (m_nCopyGuard) return;
        copyContent();
        m_nCopyGuard = 1;
        TFacade& self = static_cast<TFacade&>(*this);
        self = CopyObject();
        m_nCopyGuard = 0;
    }

private:
    ImplPtr m_pImpl;
    int m_nCopyGuard = 0;
};

ZRHB_EXPORT_END
