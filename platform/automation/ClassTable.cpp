#include "automation/ClassTable.h"

#include <algorithm>

namespace platform {

ClassTable& ClassTable::Get() {
    static ClassTable table;
    return table;
}

int ClassTable::Add(REFCLSID clsid, ObjectFactory factory) {
    const std::lock_guard lock(m_mutex);
    m_entries.push_back({m_nextToken, clsid, std::move(factory)});
    return m_nextToken++;
}

void ClassTable::Remove(int token) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_entries, [token](const Entry& entry) { return entry.token == token; });
}

HRESULT ClassTable::Create(REFCLSID clsid, REFIID iid, void** ppObject) {
    ObjectFactory factory;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                        [&](const Entry& entry) { return entry.clsid == clsid; });
        if (found == m_entries.rend()) return REGDB_E_CLASSNOTREG;
        factory = found->factory;
    }
    return factory(iid, ppObject);
}

ClassRegistration::ClassRegistration(REFCLSID clsid, ObjectFactory factory)
    : m_token(ClassTable::Get().Add(clsid, std::move(factory))) {}

ClassRegistration::~ClassRegistration() {
    ClassTable::Get().Remove(m_token);
}

} // namespace platform
