// Loads a page in a browser and prints its source.
//
// usage: fetch URL
#include <cstdio>

#include <ZrHbUHttpGet.h>

int main(int argc, char** argv) {
    if (argc != 2) return std::fprintf(stderr, "usage: fetch URL\n"), 2;
    CZrHbUHttpGet getter(eAppGroup_2);
    CString error, page, url;
    if (getter.ConnectV2(nullptr, error, CZrHbUHttpGet::eVisible,
                         CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "") != ZRHB_OK ||
        getter.Open(argv[1], error, FALSE) != ZRHB_OK ||
        // Fails after 30 s without progress, or after 15 s in which nothing begins to load.
        getter.BusyRead(page, error, url, 30'000, FALSE, 15'000, nullptr, nullptr) != ZRHB_OK)
        return std::fprintf(stderr, "fetch: %s\n", error.GetString()), 1;
    std::fprintf(stderr, "%s\n", url.GetString()); // where redirects have led
    std::printf("%s", page.GetString());
}
