// Trace and failure records written straight to the client's log, with the place they come from.
#pragma once

#include "siblings/ZrAbErrorFile.h"

// Entry traces and notes on conditions that the code then handles.
#define ZRHB_TRACE(text, group)                                                                    \
    CZrAbErrorFile::Log(text, group, __FILE__, __LINE__, __DATE__, __TIME__,                       \
                        CZrAbErrorFile::eErrorLevel_Trace, CZrAbErrorFile::eFunctionType_Http)

// A platform call failed, a wait ended abnormally, a reply was not what was required.
#define ZRHB_FAILURE(text, group)                                                                  \
    CZrAbErrorFile::Log(text, group, __FILE__, __LINE__, __DATE__, __TIME__,                       \
                        CZrAbErrorFile::eErrorLevel_Failure, CZrAbErrorFile::eFunctionType_Http)
