// What stands in an output in place of a value that is not to be shown.
#pragma once

#include <optional>
#include <string_view>

#include "compose/DataField.h"

namespace ValueMask {

// Nothing when the value itself is shown.
std::optional<std::string_view> For(const DataField& field,
                                    CZrHbDataTransmit::EZrHbRequestDataType eType);

} // namespace ValueMask
