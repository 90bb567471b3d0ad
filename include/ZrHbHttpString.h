// Query and POST strings: name=value pairs joined by "&".
//
// The simplest of the composers: names may repeat and are never encoded, values are encoded when
// their field says so. One object, one thread at a time. Follows the application/x-www-form-
// urlencoded serialising of the WHATWG URL standard, but that URLEncodeString escapes "*", "-",
// "." and "_" too.
#pragma once

#include "ZrHbFacade.h"
#include "platform/Export.h"
#include "platform/String.h"

class CZrHbHttpString_Impl;

ZRHB_EXPORT_BEGIN

class CZrHbHttpString : public CZrHbFacade<CZrHbHttpString, CZrHbHttpString_Impl> {
public:
    CZrHbHttpString();
    CZrHbHttpString(const CZrHbHttpString& other);
    CZrHbHttpString& operator=(const CZrHbHttpString& other);
    ~CZrHbHttpString() override;

    // Appends a field; nEncode: non-zero encodes the value (CZrHbHtmlTools::URLEncodeString).
    // Returns the new number of fields.
    int AddField(CString strName, CString strValue, int nEncode);
    // The pairs in the order added ("a=x+y&b=1"); empty without fields.
    CString GetPostString() const;
    // "?" and the post string, also when that is empty.
    CString GetGetString() const;
    // Removes all fields; returns how many there were.
    int Empty();

private:
    friend CZrHbFacade;
    static void DestroyImpl(CZrHbHttpString_Impl* pImpl);
};

ZRHB_EXPORT_END
