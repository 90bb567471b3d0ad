// The process's registered classes: one object with one lock.
#pragma once

#include <mutex>
#include <vector>

#include <platform/Automation.h>

namespace platform {

class ClassTable {
public:
    static ClassTable& Get();
    int Add(REFCLSID clsid, ObjectFactory factory);
    void Remove(int token);
    // REGDB_E_CLASSNOTREG when nobody offers the class.
    HRESULT Create(REFCLSID clsid, REFIID iid, void** ppObject);

private:
    struct Entry {
        int token;
        CLSID clsid;
        ObjectFactory factory;
    };
    std::mutex m_mutex;
    std::vector<Entry> m_entries;
    int m_nextToken = 1;
};

} // namespace platform
