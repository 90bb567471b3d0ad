#include "compose/MultipartBody.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "compose/TextPieces.h"
#include "compose/ValueMask.h"

namespace {

using TextPieces::Pieces;

constexpr std::string_view kDisposition = "\r\nContent-Disposition: form-data; name=\"";

std::string_view TypeLine(CZrHbDataTransmit::EZrHbContentType eType) {
    return eType == CZrHbDataTransmit::eContentType_OctetStream
               ? "Content-Type: application/octet-stream"
               : "Content-Type: text/plain";
}

// Gives the body to `take` piece by piece, so that it can be measured before it is written.
template <class TTake>
void Write(const FieldList& fields, std::string_view boundary,
           CZrHbDataTransmit::EZrHbRequestDataType eType, TTake take) {
    for (const DataField& field : fields) {
        const std::string_view name = field.strName.View();
        const std::string_view value = ValueMask::For(field, eType).value_or(field.Value());
        if (field.strFileName.IsEmpty())
            take({"--", boundary, kDisposition, name, "\"\r\n\r\n", value, "\r\n"});
        else
            take({"--", boundary, kDisposition, name, "\"; filename=\"", field.strFileName.View(),
                  "\"\r\n", TypeLine(field.eContentType), "\r\n\r\n", value, "\r\n"});
    }
    if (!fields.IsEmpty()) take({"--", boundary, "--\r\n"});
}

} // namespace

CString MultipartBody::Compose(const FieldList& fields, std::string_view boundary,
                               CZrHbDataTransmit::EZrHbRequestDataType eType) {
    std::size_t length = 0;
    Write(fields, boundary, eType, [&](Pieces pieces) { length += TextPieces::LengthOf(pieces); });
    std::string body;
    body.reserve(length);
    Write(fields, boundary, eType, [&](Pieces pieces) { TextPieces::Append(body, pieces); });
    return CString(std::move(body));
}

bool MultipartBody::Holds(const FieldList& fields, std::string_view boundary) {
    // Looks at one character in the boundary's length, mostly.
    const std::boyer_moore_horspool_searcher search(boundary.begin(), boundary.end());
    const auto holds = [&](std::string_view text) {
        return std::search(text.begin(), text.end(), search) != text.end();
    };
    return std::any_of(fields.begin(), fields.end(), [&](const DataField& field) {
        return holds(field.strName.View()) || holds(field.strFileName.View()) ||
               holds(field.Value());
    });
}
