// The seam between the documented functions and what answers them. Each service has one real
// implementation; a test installs another for the life of a ScopedService.
#pragma once

#include <atomic>

#include "Export.h"

ZRHB_EXPORT_BEGIN

namespace platform {

// The installed service; it starts as the real one. One slot a service for the whole process.
// TService::Real() returns the real implementation, built on first use and never destroyed before
// the process ends.
template <class TService>
class ServiceSlot {
public:
    static TService& Get() {
        TService* replacement = Replacement().load(std::memory_order_acquire);
        return replacement ? *replacement : TService::Real();
    }
    static TService* Exchange(TService* replacement) {
        return Replacement().exchange(replacement, std::memory_order_acq_rel);
    }

private:
    static std::atomic<TService*>& Replacement() {
        static std::atomic<TService*> slot{nullptr};
        return slot;
    }
};

template <class TService>
TService& Current() {
    return ServiceSlot<TService>::Get();
}

// Installs a service and puts the one before it back.
template <class TService>
class ScopedService {
public:
    explicit ScopedService(TService& replacement)
        : m_previous(ServiceSlot<TService>::Exchange(&replacement)) {}
    ~ScopedService() { ServiceSlot<TService>::Exchange(m_previous); }
    ScopedService(const ScopedService&) = delete;
    ScopedService& operator=(const ScopedService&) = delete;

private:
    TService* m_previous;
};

} // namespace platform

ZRHB_EXPORT_END
