// The fields of a form data set as application/x-www-form-urlencoded pairs.
#pragma once

#include "compose/FieldList.h"

namespace UrlEncodedPairs {

// "name=value" joined by "&" behind the prefix; empty, without the prefix, when there are no
// fields. Values are encoded, names and masks are not.
CString Compose(const FieldList& fields, std::string_view prefix,
                CZrHbDataTransmit::EZrHbRequestDataType eType);

} // namespace UrlEncodedPairs
