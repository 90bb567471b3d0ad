// Three lines name a section, a key and a value; the rest is an INI file.
#include <algorithm>
#include <cctype>
#include <string>
#include <tuple>
#include <vector>

#include "Check.h"
#include "system/IniDocument.h"
#include "system/IniIndex.h"

namespace {

using Entry = std::tuple<std::string, std::string, std::string>;

// The first of each name, which is the one that counts.
std::vector<Entry> EntriesOf(const platform::IniDocument& document) {
    const auto sections = document.SectionNames();
    std::vector<Entry> entries;
    for (const platform::IniEntry& entry : document.Entries())
        if (document.Find(sections[entry.section], entry.key) == entry.value)
            entries.emplace_back(platform::FoldIniName(sections[entry.section]),
                                 platform::FoldIniName(entry.key), entry.value);
    return entries;
}

bool IsPlain(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char letter) {
        return std::isalnum(static_cast<unsigned char>(letter)) != 0;
    });
}

void CheckEditing(const platform::IniDocument& before, std::string_view section,
                  std::string_view key, std::string_view value) {
    platform::IniDocument after(before.Text());
    after.Set(section, key, value);
    Check(after.Find(section, key) == value);
    const platform::IniIndex index("", after.Text());
    const auto isThisOne = [&](const Entry& entry) {
        return std::get<0>(entry) == platform::FoldIniName(section) &&
               std::get<1>(entry) == platform::FoldIniName(key);
    };
    for (const auto& entry : EntriesOf(before))
        if (!isThisOne(entry))
            Check(index.Find(std::get<0>(entry), std::get<1>(entry)) == std::get<2>(entry));
    const std::string once = after.Text();
    after.Set(section, key, value);
    Check(after.Text() == once);
    if (before.Find(section, key)) return;
    after.Remove(section, key);
    Check(!after.Find(section, key));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0; // all entries are looked for in the whole text
    std::string_view input = AsText(data, size);
    const std::string_view section = TakeUntil(input, "\n");
    const std::string_view key = TakeUntil(input, "\n");
    const std::string_view value = TakeUntil(input, "\n");
    const platform::IniDocument document{std::string(input)};
    const platform::IniIndex index("", std::string(input));
    Check(index.Find(section, key) == document.Find(section, key));
    for (const std::string_view name : document.SectionNames())
        Check(name.find_first_of("\r\n") == std::string_view::npos);
    for (const auto& [itsSection, itsKey, itsValue] : EntriesOf(document))
        Check(index.Find(itsSection, itsKey) == itsValue);
    if (IsPlain(section) && IsPlain(key) && IsPlain(value))
        CheckEditing(document, section, key, value);
    return 0;
}
