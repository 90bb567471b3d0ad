#include "compose/FieldList.h"

#include <utility>

FieldList::FieldList(const FieldList& other) : m_fields(other.m_fields) {
    for (auto field = m_fields.begin(); field != m_fields.end(); ++field)
        m_positions.emplace(field->strName.View(), field);
}

FieldList& FieldList::operator=(const FieldList& other) {
    FieldList copy(other);
    m_fields.swap(copy.m_fields); // positions stay valid
    m_positions.swap(copy.m_positions);
    return *this;
}

void FieldList::Put(DataField&& field) {
    const auto [entry, isNew] = m_positions.try_emplace(std::string(field.strName.View()));
    if (isNew)
        entry->second = m_fields.insert(m_fields.end(), std::move(field));
    else
        *entry->second = std::move(field);
}

void FieldList::Remove(const CString& strName) {
    const auto entry = m_positions.find(std::string(strName.View()));
    if (entry == m_positions.end()) return;
    m_fields.erase(entry->second);
    m_positions.erase(entry);
}

void FieldList::Clear() {
    m_positions.clear();
    m_fields.clear();
}
