// Posts a form with a confidential field, whose value comes from a file, and prints the reply.
//
// usage: form URL PIN-FILE
#include <cstdio>

#include <ZrHbDataTransmit.h>
#include <ZrHbUHttpGet.h>

int main(int argc, char** argv) {
    if (argc != 3) return std::fprintf(stderr, "usage: form URL PIN-FILE\n"), 2;
    CZrHbDataTransmit form;
    form.SetField("empfaenger", "M\xFCller & Sohn", // code page 1252
                  CZrHbDataTransmit::eDataConfidentialityType_Public);
    if (form.SetFile("pin", argv[2], CZrHbDataTransmit::eContentType_TextPlain,
                     CZrHbDataTransmit::eDataConfidentialityType_Confidential) == 0)
        return std::fprintf(stderr, "form: cannot read %s\n", argv[2]), 1;

    // For a log: confidential values show as "[...]".
    const CString masked =
        form.GetURLEncodedData(CZrHbDataTransmit::eRequestDataType_Masked, FALSE);
    std::fprintf(stderr, "sending %s\n", masked.GetString());

    CZrHbUHttpGet getter(eAppGroup_2);
    CString error, page, url;
    const CString data = form.GetURLEncodedData(FALSE);
    const CString header = form.GetURLEncodedHeader() + "\r\n";
    if (getter.ConnectV2(nullptr, error, CZrHbUHttpGet::eVisible,
                         CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "") != ZRHB_OK ||
        getter.Open(argv[1], error, data, header, FALSE) != ZRHB_OK ||
        getter.BusyRead(page, error, url, 30'000, FALSE, 15'000, nullptr, nullptr) != ZRHB_OK)
        return std::fprintf(stderr, "form: %s\n", error.GetString()), 1;
    std::printf("%s", page.GetString());
}
