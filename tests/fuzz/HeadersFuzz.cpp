// The first line is the order, the rest a header block.
#include <algorithm>
#include <string_view>

#include <ZrHbHttpHeaders.h>

#include "Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = std::min(input.find('\n'), input.size());
    CZrHbHttpHeaders headers;
    headers.AddHeaders(CString(input.substr(lineEnd)), CZrHbHttpHeaders::eAddHandling_Replace);
    const CString block = headers.GetHeaders();
    CStringArray order;
    order.Add(CString(input.substr(0, lineEnd)));
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
