// The client's own user-agent text, made from the browser's.
#pragma once

#include <functional>
#include <string>

#include <platform/String.h>
#include <platform/Types.h>

// Asks for a text: fills the buffer of `size` bytes and tells the text's length, also when it
// needs more room (E_OUTOFMEMORY).
using TextQuery = std::function<HRESULT(char* pBuffer, DWORD size, DWORD* pLength)>;

// The text of a query that is asked with 2048 bytes of room and, if that is too little, once more
// with as much as it wants. Empty when it fails.
std::string AnswerOf(const TextQuery& query);

// browser: "product/1.0 (comment)". Takes over the comment, when one ends the text.
CString VeltrumUserAgent(const std::string& browser);
