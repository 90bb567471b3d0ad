// The first line is the name asked for, the rest the message.
#include <ZrHbBrightrelayReply.h>

#include "Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = AsText(data, size);
    const CString name(TakeUntil(rest, "\n"));
    CZrHbBrightrelayReply reply;
    const int isFound = reply.Init(CString(rest));
    CString error;
    Check(isFound == reply.IsObjectInitialized());
    Check(reply.GetLastParserError(error) == (isFound ? 0 : -1) && error.IsEmpty() == !!isFound);
    const CString comment = reply.GetBrightrelayReply();
    Check(comment.IsEmpty() == !isFound && comment.View().find_first_of("\r\n") == size_t(-1));
    const CString plain = reply.GetValue(name, CZrHbBrightrelayReply::eTagType_Plain);
    Check(plain.Find(' ') < 0 && comment.Find(plain) >= 0);
    const CString quoted = reply.GetValue(name, CZrHbBrightrelayReply::eTagType_Quoted);
    Check(quoted.Find("\" ") < 0 && comment.Find(quoted) >= 0);
    Check(!reply.IsStatusOkay() || reply.GetStatusValue() == "0");
    return 0;
}
