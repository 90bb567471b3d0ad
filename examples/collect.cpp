// Prints every document of a page and of the pages that it goes on to, frames first. The browser is
// an application of its own, which hands out each document.
//
// usage: collect URL [SECONDS]    ends after so many seconds (15) without a new document
#include <cstdio>
#include <cstdlib>

#include <ZrHbUHttpGet.h>

int main(int argc, char** argv) {
    if (argc < 2) return std::fprintf(stderr, "usage: collect URL [SECONDS]\n"), 2;
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 15;
    const BOOL keepPageOpen = TRUE;
    CZrHbUHttpGet getter(eAppGroup_2);
    CString error;
    CStringArray pages, urls;
    if (getter.ConnectV3(nullptr, error, CZrHbUHttpGet::eVisible,
                         CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "", argv[1], 0,
                         0) != ZRHB_OK ||
        getter.Open(argv[1], error, keepPageOpen) != ZRHB_OK)
        return std::fprintf(stderr, "collect: %s\n", error.GetString()), 1;
    const DWORD code = getter.BusyRead(pages, error, urls, 30'000, FALSE,
                                       static_cast<DWORD>(seconds) * 1000, nullptr, nullptr);
    for (int index = 0; index < pages.GetSize(); ++index)
        std::printf("%s\n%s\n", urls.GetAt(index).GetString(), pages.GetAt(index).GetString());
    if (code == ZRHB_IDLE_TIMEOUT) return 0; // nothing more has come: the whole collection
    return std::fprintf(stderr, "collect: %s\n", error.GetString()), 1;
}
