// What the doctor says of Chromium and the display.
#pragma once

#include "zrhttp/Diagnosis.h"

namespace zrhttp {

// Adds the section "Browser", and the problems that keep an engine which is set from working.
void CheckBrowser(Diagnosis& diagnosis);

} // namespace zrhttp
