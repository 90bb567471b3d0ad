// The fields of a query or POST string.
#pragma once

#include <string_view>
#include <vector>

#include <platform/String.h>

class CZrHbHttpString_Impl {
public:
    // Returns how many fields there are now.
    int Add(CString strName, CString strValue);
    // The pairs behind the prefix.
    CString Join(std::string_view prefix) const;
    // Returns how many fields there were.
    int Empty();

private:
    struct Field {
        CString strName;
        CString strValue; // as it is sent
    };
    std::vector<Field> m_fields;
};
