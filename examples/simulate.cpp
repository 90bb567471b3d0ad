// Asks for a page whose answer is a local file: a rule in the simulation directory says so, and no
// server is needed. The browser is an application of its own; only there are requests simulated.
//
// usage: simulate FILE
#include <cstdio>

#include <ZrHbUHttpGet.h>
#include <platform/IniFile.h>
#include <platform/UserPaths.h>

int main(int argc, char** argv) {
    if (argc != 2) return std::fprintf(stderr, "usage: simulate FILE\n"), 2;
    const char* const rules = "c:\\HttpGet_Simulate\\Simulate.ini";
    const char* const url = "https://www.example.test/konto";
    if (!WritePrivateProfileStringA("Rule1", "URL", url, rules) ||
        !WritePrivateProfileStringA("Rule1", "SimPage", argv[1], rules))
        return std::fprintf(stderr, "simulate: make the directory HttpGet_Simulate on drive c:\n"),
               1;

    CZrHbUHttpGet getter(eAppGroup_2);
    CString error, page, location;
    if (getter.ConnectV3(nullptr, error, CZrHbUHttpGet::eVisible,
                         CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "", url, 0,
                         0) != ZRHB_OK ||
        getter.Open(CString("SIM:") + url, error, FALSE) != ZRHB_OK ||
        getter.BusyRead(page, error, location, 30'000, FALSE, 15'000, nullptr, nullptr) != ZRHB_OK)
        return std::fprintf(stderr, "simulate: %s\n", error.GetString()), 1;
    std::printf("%s", page.GetString());
}
