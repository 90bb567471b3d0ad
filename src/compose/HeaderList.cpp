#include "compose/HeaderList.h"

#include "compose/TextPieces.h"

namespace {

constexpr std::string_view kSeparator = ": ";

} // namespace

bool HeaderList::Add(std::string_view name, std::string_view value,
                     CZrHbHttpHeaders::EZrHbAddHandling eHandling) {
    name = TextPieces::UpToNul(name);
    value = TextPieces::UpToNul(value);
    if (name.empty() || value.empty()) return false;
    const auto [entry, isNew] = m_positions.try_emplace(std::string(name), m_fields.size());
    if (isNew) {
        m_fields.push_back({std::string(name), std::string(value)});
        return true;
    }
    if (eHandling == CZrHbHttpHeaders::eAddHandling_Replace) m_fields[entry->second].value = value;
    return eHandling == CZrHbHttpHeaders::eAddHandling_Replace ||
           eHandling == CZrHbHttpHeaders::eAddHandling_KeepExisting;
}

const HeaderField* HeaderList::Find(const std::string& name) const {
    const auto entry = m_positions.find(name);
    return entry == m_positions.end() ? nullptr : &m_fields[entry->second];
}

std::vector<const HeaderField*> HeaderList::InOrder(const CStringArray& order) const {
    std::vector<const HeaderField*> fields;
    fields.reserve(m_fields.size());
    std::vector<bool> isTaken(m_fields.size(), false);
    const auto take = [&](std::size_t position) {
        if (!isTaken[position]) fields.push_back(&m_fields[position]);
        isTaken[position] = true;
    };
    for (int index = 0; index < order.GetSize(); ++index) {
        const auto entry = m_positions.find(std::string(order[index].GetString()));
        if (entry != m_positions.end()) take(entry->second);
    }
    for (std::size_t position = 0; position < m_fields.size(); ++position)
        take(position);
    return fields;
}

std::string HeaderList::Print(const CStringArray& order) const {
    std::string block;
    for (const HeaderField* field : InOrder(order)) {
        block += field->name;
        block += kSeparator;
        block += field->value;
        block += kLineEnd;
    }
    if (!block.empty()) block += kLineEnd;
    return block;
}
