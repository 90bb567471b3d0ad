#include "system/IniIndex.h"

namespace platform {

namespace {

// No name holds a NUL byte, so that this names one entry only.
std::string NameOf(std::string_view section, std::string_view key) {
    std::string name = FoldIniName(TrimIniBlanks(section));
    name.push_back('\0');
    return name += FoldIniName(TrimIniBlanks(key));
}

} // namespace

IniIndex::IniIndex(std::string fileName, std::string text)
    : m_fileName(std::move(fileName)), m_document(std::move(text)) {
    // Of sections with the same name the first one counts, whatever it holds.
    const auto names = m_document.SectionNames();
    std::unordered_map<std::string, std::size_t> firstSections;
    for (std::size_t section = 0; section < names.size(); ++section)
        firstSections.emplace(FoldIniName(names[section]), section);
    for (const IniEntry& entry : m_document.Entries()) {
        const std::string_view section = names[entry.section];
        if (firstSections.at(FoldIniName(section)) == entry.section)
            m_values.emplace(NameOf(section, entry.key), entry.value);
    }
}

std::optional<std::string_view> IniIndex::Find(std::string_view section,
                                               std::string_view key) const {
    const auto found = m_values.find(NameOf(section, key));
    if (found == m_values.end()) return std::nullopt;
    return found->second;
}

} // namespace platform
