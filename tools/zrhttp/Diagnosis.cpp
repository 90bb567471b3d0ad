#include "zrhttp/Diagnosis.h"

#include <algorithm>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Printable.h"

namespace zrhttp {
namespace {

constexpr std::size_t kNameWidth = 22;

std::string Shown(const std::string& text) {
    return PrintableLine(TextFromBytes(text));
}

std::string Padded(std::string text) {
    text.resize(std::max(text.size() + 1, kNameWidth), ' ');
    return text;
}

} // namespace

void Diagnosis::Section(const std::string& title) {
    m_rows.push_back({title, "", "", true});
}

void Diagnosis::Fact(const std::string& name, const std::string& value, const std::string& note) {
    m_rows.push_back({name, value, note, false});
}

void Diagnosis::Problem(const std::string& what, const std::string& remedy) {
    m_problems.push_back(what + "\n    " + remedy);
}

std::string Diagnosis::Text() const {
    std::string text;
    for (const Row& row : m_rows) {
        if (row.isTitle) {
            text += (text.empty() ? "" : "\n") + row.name + "\n";
            continue;
        }
        text += "  " + Padded(row.name) + (row.value.empty() ? "-" : Shown(row.value));
        if (!row.note.empty()) text += "  (" + Shown(row.note) + ")";
        text += "\n";
    }
    text += m_problems.empty() ? "\nEverything essential works.\n" : "\nProblems\n";
    for (const std::string& problem : m_problems)
        text += "  " + PrintableText(TextFromBytes(problem)) + "\n";
    return text;
}

} // namespace zrhttp
