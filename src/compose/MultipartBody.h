// The multipart/form-data body of a form data set (RFC 7578): one part a field, lines ending with
// CR LF, neither preamble nor epilogue.
#pragma once

#include <string_view>

#include "compose/FieldList.h"

namespace MultipartBody {

// Empty without fields. One allocation, linear.
CString Compose(const FieldList& fields, std::string_view boundary,
                CZrHbDataTransmit::EZrHbRequestDataType eType);

// Whether the boundary occurs in a body of these fields, with their real values and but for the
// delimiters. boundary: letters and digits only, more than twenty; such a text fits into none of
// the layout's own words, hence the body is not composed for the search.
bool Holds(const FieldList& fields, std::string_view boundary);

} // namespace MultipartBody
