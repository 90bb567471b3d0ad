// The shape that all exported classes with state share: a pointer to the implementation object, a
// copy guard, and three virtual functions in this order.
#pragma once

#include <memory>
#include <utility>

#include <platform/Export.h>

ZRHB_EXPORT_BEGIN

// TFacade: the exported class. TImpl: its implementation object, complete only where the exported
// class is implemented.
template <class TFacade, class TImpl>
class CZrHbFacade {
public:
    // Returns the object itself; part of the assignment protocol, copies nothing.
    virtual TFacade& CopyObject() { return static_cast<TFacade&>(*this); }

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }

public:
    virtual ~CZrHbFacade() { DeleteImpl(); }
    CZrHbFacade(const CZrHbFacade&) = delete;
    CZrHbFacade& operator=(const CZrHbFacade&) = delete;

protected:
    CZrHbFacade() = default;

    // Takes the implementation object and clears the guard; 1 when there is one, else 0.
    int CreateImpl(std::unique_ptr<TImpl> impl) {
        DeleteImpl();
        m_pImpl = impl.release();
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
    TImpl* GetImpl() const { return m_pImpl; }
    // 1, or 0 when there was none.
    int DeleteImpl() {
        const std::unique_ptr<TImpl> impl(std::exchange(m_pImpl, nullptr));
        return impl ? 1 : 0;
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
    TImpl* m_pImpl = nullptr;
    int m_nCopyGuard = 0;
};

ZRHB_EXPORT_END
