// The fields of a form data set in their order, found by their names in constant time.
#pragma once

#include <list>
#include <string>
#include <unordered_map>

#include "compose/DataField.h"

class FieldList {
public:
    FieldList() = default;
    FieldList(const FieldList& other);
    FieldList& operator=(const FieldList& other);
    ~FieldList() = default;

    // Takes the place of the field of that name, or goes to the end.
    void Put(DataField&& field);
    // Nothing happens when there is no such field.
    void Remove(const CString& strName);
    void Clear();

    bool IsEmpty() const { return m_fields.empty(); }
    std::list<DataField>::const_iterator begin() const { return m_fields.begin(); }
    std::list<DataField>::const_iterator end() const { return m_fields.end(); }

private:
    // A list: its positions stay valid when a field in the middle is removed.
    std::list<DataField> m_fields;
    std::unordered_map<std::string, std::list<DataField>::iterator> m_positions;
};
