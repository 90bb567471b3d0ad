// The protected-mode question.
#pragma once

#include <ZrAbAppGroup.h>
#include <platform/String.h>

// Whether the URL opens in the browser's protected mode. The answer comes from the wrapper library
// in the group's static data directory, which is loaded for each question and unloaded again. FALSE
// also when the question cannot be answered. Never throws. Blocks the calling thread.
BOOL AskProtectedMode(EZrAbAppGroup eGroup, const CString& strUrl);
