// The first line is the order, the rest a header block.
#include <ZrHbHttpHeaders.h>

#include "Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = AsText(data, size);
    CStringArray order;
    order.Add(CString(TakeUntil(rest, "\n")));
    CZrHbHttpHeaders headers;
    headers.AddHeaders(CString(rest), CZrHbHttpHeaders::eAddHandling_Replace);
    const CString block = headers.GetHeaders();
    headers.SetHeaderOrder(order);
    const CString ordered = headers.GetHeaders();
    Check(ordered.GetLength() == block.GetLength());
    Check(block.IsEmpty() || block.Right(4) == "\r\n\r\n");

    // What is printed can be taken in again, but for the empty line at its end.
    CZrHbHttpHeaders again;
    if (!block.IsEmpty()) Check(again.AddHeaders(block.Left(block.GetLength() - 4), {}) == 1);
    Check(again.GetHeaders() == block);
    again.AddHeaders(ordered, CZrHbHttpHeaders::eAddHandling_KeepExisting);
    Check(again.GetHeaders() == block);
    return 0;
}
