// An INI file's text, ready for many reads.
#pragma once

#include <string>
#include <unordered_map>

#include "system/IniDocument.h"

namespace platform {

// Answers as the document does, in constant time.
class IniIndex {
public:
    IniIndex(std::string fileName, std::string text);
    IniIndex(const IniIndex&) = delete;
    IniIndex& operator=(const IniIndex&) = delete;

    const std::string& FileName() const { return m_fileName; }
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;
    std::vector<std::string_view> SectionNames() const { return m_document.SectionNames(); }

private:
    const std::string m_fileName;
    const IniDocument m_document;
    std::unordered_map<std::string, std::string_view> m_values; // see NameOf in the source
};

} // namespace platform
