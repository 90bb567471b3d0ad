// The text of an INI file, read and edited in place: a change touches only the lines it has to.
//
//   file    = *( line line-end )           line-end = CR LF / LF / CR
//   line    = comment / section / entry / anything else (kept, means nothing)
//   comment = *blank ";" ...
//   section = *blank "[" name "]" ...      the last "]" of the line ends the name
//   entry   = key "=" value                blanks around both do not count
//
// A line ends for its reader at its first NUL byte. A UTF-8 byte order mark is skipped.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform {

struct IniEntry {
    std::size_t section; // index in SectionNames()
    std::string_view key;
    std::string_view value; // without its enclosing quotes
};

class IniDocument {
public:
    explicit IniDocument(std::string text) : m_text(std::move(text)) {}

    // The value without its enclosing quotes; valid until the next change.
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;
    // Valid until the next change.
    std::vector<std::string_view> SectionNames() const;
    // The entries of all sections, in the order of the file; valid until the next change.
    std::vector<IniEntry> Entries() const;
    // Replaces the first entry of that key, or adds one at the end of the section, which is made at
    // the end of the file when there is none. No text may hold a line end.
    void Set(std::string_view section, std::string_view key, std::string_view value);
    // Takes out the first entry of that key.
    void Remove(std::string_view section, std::string_view key);
    const std::string& Text() const { return m_text; }

private:
    struct Line;
    struct Place;
    Line LineAt(std::size_t begin) const;
    std::size_t FirstLine() const;
    Place Locate(std::string_view section, std::string_view key) const;
    std::string_view LineEnd() const;
    void InsertLine(std::size_t position, const std::string& line);

    std::string m_text;
};

// ASCII letters without regard to case.
bool EqualIniNames(std::string_view a, std::string_view b);
// The form in which names that EqualIniNames takes for equal are the same.
std::string FoldIniName(std::string_view name);
// Without the blanks (space, tab, vertical tab, form feed) at both ends.
std::string_view TrimIniBlanks(std::string_view text);

} // namespace platform
