#include "system/IniDocument.h"

#include <algorithm>

namespace platform {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\v\f";

char FoldCase(char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

std::string_view WithoutQuotes(std::string_view value) {
    const bool isQuoted = value.size() >= 2 && value.front() == value.back() &&
                          (value.front() == '"' || value.front() == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<std::string_view> SectionName(std::string_view line) {
    if (line.empty() || line.front() != '[') return std::nullopt;
    const std::size_t end = line.rfind(']');
    if (end == std::string_view::npos) return std::nullopt;
    return TrimIniBlanks(line.substr(1, end - 1));
}

struct Entry {
    std::string_view key;
    std::string_view value;
};

std::optional<Entry> ParseEntry(std::string_view line) {
    if (line.empty() || line.front() == ';') return std::nullopt;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    return Entry{TrimIniBlanks(line.substr(0, equals)), TrimIniBlanks(line.substr(equals + 1))};
}

} // namespace

bool EqualIniNames(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, FoldCase, FoldCase);
}

std::string FoldIniName(std::string_view name) {
    std::string folded(name);
    std::ranges::transform(folded, folded.begin(), FoldCase);
    return folded;
}

std::string_view TrimIniBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

struct IniDocument::Line {
    std::size_t begin;
    std::size_t next;      // first byte of the following line
    std::string_view text; // trimmed, up to the first NUL
};

// Where an entry is or, without one, where it would go.
struct IniDocument::Place {
    bool hasSection = false;
    std::size_t sectionEnd = 0; // behind the section's last line that is not empty
    std::optional<Line> entryLine;
    std::string_view value;
};

std::size_t IniDocument::FirstLine() const {
    return m_text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
}

IniDocument::Line IniDocument::LineAt(std::size_t begin) const {
    const std::size_t end = std::min(m_text.find_first_of("\r\n", begin), m_text.size());
    const std::string_view whole(m_text);
    const std::string_view text = whole.substr(begin, end - begin);
    const std::size_t lineEnd = whole.substr(end).starts_with("\r\n") ? 2u : 1u;
    return {begin, std::min(end + lineEnd, m_text.size()),
            TrimIniBlanks(text.substr(0, text.find('\0')))};
}

IniDocument::Place IniDocument::Locate(std::string_view section, std::string_view key) const {
    section = TrimIniBlanks(section);
    key = TrimIniBlanks(key);
    Place place;
    for (std::size_t position = FirstLine(); position < m_text.size();) {
        const Line line = LineAt(position);
        position = line.next;
        if (const auto name = SectionName(line.text)) {
            if (place.hasSection) break;
            place.hasSection = EqualIniNames(*name, section);
        }
        if (!place.hasSection) continue;
        if (!line.text.empty()) place.sectionEnd = line.next;
        const auto entry = ParseEntry(line.text);
        if (entry && EqualIniNames(entry->key, key)) {
            place.entryLine = line;
            place.value = entry->value;
            break;
        }
    }
    return place;
}

std::optional<std::string_view> IniDocument::Find(std::string_view section,
                                                  std::string_view key) const {
    const Place place = Locate(section, key);
    if (!place.entryLine) return std::nullopt;
    return WithoutQuotes(place.value);
}

std::vector<std::string_view> IniDocument::SectionNames() const {
    std::vector<std::string_view> names;
    for (std::size_t position = FirstLine(); position < m_text.size();) {
        const Line line = LineAt(position);
        position = line.next;
        if (const auto name = SectionName(line.text)) names.push_back(*name);
    }
    return names;
}

std::vector<IniEntry> IniDocument::Entries() const {
    std::vector<IniEntry> entries;
    std::size_t sections = 0;
    for (std::size_t position = FirstLine(); position < m_text.size();) {
        const Line line = LineAt(position);
        position = line.next;
        if (SectionName(line.text)) ++sections;
        const auto entry = ParseEntry(line.text);
        if (entry && sections > 0)
            entries.push_back({sections - 1, entry->key, WithoutQuotes(entry->value)});
    }
    return entries;
}

// The line end that the file's first line has; a new file gets the host platform's.
std::string_view IniDocument::LineEnd() const {
    const std::size_t end = m_text.find_first_of("\r\n");
    if (end == std::string::npos) return "\r\n";
    const std::string_view rest = std::string_view(m_text).substr(end);
    return rest.substr(0, rest.starts_with("\r\n") ? 2 : 1);
}

void IniDocument::InsertLine(std::size_t position, const std::string& line) {
    const std::string_view lineEnd = LineEnd();
    std::string inserted;
    const bool isBehindOpenLine =
        position > FirstLine() && m_text[position - 1] != '\n' && m_text[position - 1] != '\r';
    if (isBehindOpenLine) inserted = lineEnd;
    inserted += line;
    inserted += lineEnd;
    m_text.insert(position, inserted);
}

void IniDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
    std::string entry(TrimIniBlanks(key));
    entry.append("=").append(value);
    const Place place = Locate(section, key);
    if (place.entryLine) {
        const std::size_t begin = place.entryLine->begin;
        m_text.replace(begin, std::min(m_text.find_first_of("\r\n", begin), m_text.size()) - begin,
                       entry);
    } else if (place.hasSection) {
        InsertLine(place.sectionEnd, entry);
    } else {
        std::string heading = "[";
        heading.append(TrimIniBlanks(section)).append("]");
        InsertLine(m_text.size(), heading);
        InsertLine(m_text.size(), entry);
    }
}

void IniDocument::Remove(std::string_view section, std::string_view key) {
    const Place place = Locate(section, key);
    if (place.entryLine)
        m_text.erase(place.entryLine->begin, place.entryLine->next - place.entryLine->begin);
}

} // namespace platform
