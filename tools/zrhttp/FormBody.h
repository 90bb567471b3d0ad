// The body that a form is sent with.
#pragma once

#include <string>
#include <vector>

#include "zrhttp/FormOptions.h"
#include "zrhttp/FormParts.h"

namespace zrhttp {

// The query or the body, with the Content-Type line ahead when it was asked for. Throws UsageError
// when the parts cannot be sent in this encoding, or with this boundary.
std::string ComposeForm(const FormOptions& options, const std::vector<FormPart>& parts);

} // namespace zrhttp
