// Takes the values out of a marked reply and prints the page around them as text.
//
// usage: reply FILE
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include <ZrHbBrightrelayReply.h>
#include <ZrHbHtmlTools.h>

int main(int argc, char** argv) {
    if (argc != 2) return std::fprintf(stderr, "usage: reply FILE\n"), 2;
    std::ifstream file(argv[1], std::ios::binary);
    if (!file) return std::fprintf(stderr, "reply: cannot read %s\n", argv[1]), 1;
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    CString page(bytes.c_str());

    CZrHbBrightrelayReply reply;
    CString error;
    if (reply.Init(page)) {
        const CString text = reply.GetValue("TEXT", CZrHbBrightrelayReply::eTagType_Quoted);
        std::printf("status %s: %s\n", reply.GetStatusValue().GetString(), text.GetString());
    } else {
        reply.GetLastParserError(error);
        std::fprintf(stderr, "reply: %s\n", error.GetString());
    }

    const int compact = 1; // no empty lines
    CZrHbHtmlTools::HtmlPageMakePureText(page, compact);
    std::printf("%s\n", page.GetString());
    return error.IsEmpty() ? 0 : 1;
}
