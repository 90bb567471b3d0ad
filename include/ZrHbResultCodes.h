// Result codes of the page getter and its browser back-ends (unsigned 32-bit).
#pragma once

#include "platform/Export.h"
#include "platform/Types.h"

ZRHB_EXPORT_BEGIN

constexpr DWORD ZRHB_OK = 0;
constexpr DWORD ZRHB_STILL_LOADING = 10;      // ask again
constexpr DWORD ZRHB_LOADED_IDLE = 11;        // every collected page handed out, browser idle
constexpr DWORD ZRHB_CONNECT_FAILED = 20;     // no browser could be created or attached
constexpr DWORD ZRHB_OPEN_NOT_CONNECTED = 21; // Open without a connection
constexpr DWORD ZRHB_READ_FAILED = 22;        // the page cannot be read; the error text tells why
constexpr DWORD ZRHB_CANNOT_NAVIGATE = 23;    // exception in connect; navigation cannot be started
constexpr DWORD ZRHB_READ_TIMEOUT = 24;       // no progress within the read time-out
constexpr DWORD ZRHB_NO_OPEN_PAGE = 25;       // read without an open page
constexpr DWORD ZRHB_SAVE_FAILED = 26;        // the page cannot be written to the file
constexpr DWORD ZRHB_BROWSER_GONE = 27;       // the browser has gone away
constexpr DWORD ZRHB_STOPPED = 28;            // the caller's callback asked to stop
constexpr DWORD ZRHB_IDLE_TIMEOUT = 29;       // no new page started loading

// POST length: the data is a NUL-terminated text whose length is to be taken.
constexpr DWORD ZRHB_LENGTH_OF_TEXT = 0xFFFFFFFFu;

ZRHB_EXPORT_END
