// The text between a pair of tags.

#include <ZrHbHtmlTools.h>

#include <algorithm>
#include <cstring>

#include "parse/AsciiText.h"

int CZrHbHtmlTools::GetInfoBetweenHtmlTags(const char* pszText, const char* pszTagName,
                                           CString& strResult, int nTrim, int nFailIfEmpty,
                                           char** ppContinue) {
    if (ppContinue) *ppContinue = const_cast<char*>(pszText);
    if (!pszText || !pszTagName) return FALSE;
    const CString opening = CString("<") + pszTagName + ">";
    const CString closing = CString("</") + pszTagName + ">";

    // Both stop at what they find: walking through a long text piece by piece stays linear.
    const char* const start = std::strstr(pszText, opening);
    const char* const end = start ? std::strstr(start, closing) : nullptr;
    if (!end) return FALSE;
    if (ppContinue) *ppContinue = const_cast<char*>(end + closing.GetLength());

    // A name that contains tags itself can make the closing tag begin inside the opening one.
    const char* const content = start + opening.GetLength();
    const auto length = static_cast<std::size_t>(std::max<std::ptrdiff_t>(end - content, 0));
    const std::string_view text(content, length);
    strResult = CString(nTrim ? Trimmed(text) : text);
    return strResult.IsEmpty() && nFailIfEmpty ? FALSE : TRUE;
}
