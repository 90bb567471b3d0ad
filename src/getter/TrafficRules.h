// The rules that answer requests without a server: an INI file that the user writes.
//
//   [Rule...]              any section whose name begins so, in the order of the file
//   URL=...                the request's URL, exactly
//   PostData=...           the request's POST text, exactly; or
//   PostDataPart0=... 1 2  texts that all occur in it
//   SimPage=...            the page to load instead
#pragma once

#include <optional>

#include <platform/String.h>

namespace TrafficRules {

// The page of the first rule that answers the request; nothing when none does.
std::optional<CString> FindPage(const CString& strUrl, const CString& strPostText);
// Leaves the request in the rules file as a section that can be made a rule; each call replaces
// the one before.
void WriteUnanswered(const CString& strUrl, const CString& strPostText);
// The names of a file's sections, in its order; returns how many there are.
int ReadSectionNames(CStringArray& names, const char* pszFileName);

} // namespace TrafficRules
