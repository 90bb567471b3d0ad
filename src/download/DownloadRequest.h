// What is to be downloaded, and who is told about it.
#pragma once

#include <ZrAbAppGroup.h>
#include <platform/String.h>
#include <platform/Types.h>

struct DownloadRequest {
    CString url;
    CString file;
    CString failureText; // for a user whose download failed
    CString closingText;
    EZrAbAppGroup group = eAppGroup_2;
    HWND window = nullptr; // gets the messages; null for none
    bool isFailureMessageWanted = false;
};
