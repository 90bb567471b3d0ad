// Where traffic simulation and recording keep their files, and the texts they write there.
#pragma once

#include <platform/String.h>

namespace TrafficFiles {

// The user makes it; nothing here does.
constexpr const char* kDirectory = "c:\\HttpGet_Simulate";
constexpr const char* kRules = "c:\\HttpGet_Simulate\\Simulate.ini";
constexpr const char* kRecord = "c:\\HttpGet_Simulate\\Saved.ini";

// POST data as a text: up to its first zero byte; nPostLen bytes at most, unless that is
// 0xFFFFFFFF. Empty for null.
CString PostText(const void* pPostData, DWORD nPostLen);
// INI files hold values of one line: each run of line ends becomes one blank.
CString OnOneLine(const CString& strText);
// As a text file of the user's own, created or emptied; what fails is left undone.
void WriteTextFile(const CString& strText, const CString& strFileName);

} // namespace TrafficFiles
