#include "compose/UrlEncodedPairs.h"

#include <string>
#include <utility>
#include <vector>

#include <ZrHbHtmlTools.h>

#include "compose/TextPieces.h"
#include "compose/ValueMask.h"

namespace {

std::vector<CString> ShownValues(const FieldList& fields,
                                 CZrHbDataTransmit::EZrHbRequestDataType eType) {
    std::vector<CString> values;
    for (const DataField& field : fields) {
        const auto mask = ValueMask::For(field, eType);
        values.push_back(mask ? CString(*mask)
                              : CZrHbHtmlTools::URLEncodeString(field.value.GetString()));
    }
    return values;
}

} // namespace

CString UrlEncodedPairs::Compose(const FieldList& fields, std::string_view prefix,
                                 CZrHbDataTransmit::EZrHbRequestDataType eType) {
    if (fields.IsEmpty()) return CString();
    const std::vector<CString> values = ShownValues(fields, eType);
    std::size_t length = prefix.size();
    auto value = values.begin();
    for (const DataField& field : fields)
        length += field.strName.View().size() + (value++)->View().size() + 2;
    std::string text;
    text.reserve(length);
    text = prefix;
    value = values.begin();
    for (const DataField& field : fields)
        TextPieces::Append(text, {field.strName.View(), "=", (value++)->View(), "&"});
    text.pop_back();
    return CString(std::move(text));
}
