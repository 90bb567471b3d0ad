// The request headers of a page request: collected one by one or as a block, printed in a chosen
// order.
//
// Header names are compared exactly, case-sensitively, unlike RFC 9110 has it. Names and values end
// at their first NUL byte, wherever they are given: added, in a block's line, in an order, looked
// up. What is behind it is neither compared nor printed. One object, one thread at a time. Results
// are 1 for success and 0 for failure; there are no error texts.
#pragma once

#include "ZrHbFacade.h"
#include "platform/Export.h"
#include "platform/String.h"

class CZrHbHttpHeaders_Impl;

ZRHB_EXPORT_BEGIN

class CZrHbHttpHeaders : public CZrHbFacade<CZrHbHttpHeaders, CZrHbHttpHeaders_Impl> {
public:
    // What adding does when a header of that name is there already. With any other value the
    // header stays as it is and the result is 0.
    enum EZrHbAddHandling {
        eAddHandling_Replace = 1,      // the value is replaced, the position kept
        eAddHandling_KeepExisting = 2, // the new value is dropped
    };

    CZrHbHttpHeaders();
    CZrHbHttpHeaders(const CZrHbHttpHeaders& other);
    CZrHbHttpHeaders& operator=(const CZrHbHttpHeaders& other);
    ~CZrHbHttpHeaders() override;

    // Adds every line of a block; lines are separated by CR LF. A line is a name, taken exactly as
    // it stands before the first ":", and a value without its leading white space. 1 when every
    // line could be added; the others are added all the same. A block that ends with CR LF holds
    // an empty line and gives 0.
    int AddHeaders(const CString& strBlock, EZrHbAddHandling eHandling);
    // 0 for an empty name or value.
    int AddHeaderFieldText(const CString& strName, const CString& strValue,
                           EZrHbAddHandling eHandling);
    // The number in decimal digits, without sign.
    int AddHeaderFieldNumeric(const CString& strName, unsigned long nValue,
                              EZrHbAddHandling eHandling);
    // Names in the order in which GetHeaders prints them first; replaces an earlier order.
    void SetHeaderOrder(const CStringArray& order);
    // "Name: value" CR LF for each header, those of the order first, the others as they were
    // added; then an empty line. Empty without headers.
    CString GetHeaders() const;
    // Empty when there is no header of exactly that name.
    CString GetHeaderFieldValue(const CString& strName) const;
    // The client's user-agent text: "VELTRUM e-banking Software " and the comment at the end of
    // the browser's own user-agent string, or "(compatible)". May start a browser to ask it. The
    // length that a browser tells sizes the buffer of the second question; one of a megabyte
    // (1,048,576 bytes) or more is taken for no answer, so that a faulty browser cannot make the
    // program ask for gigabytes.
    static CString GetVeltrumUserAgentValue();

private:
    friend CZrHbFacade;
    static void DestroyImpl(CZrHbHttpHeaders_Impl* pImpl);
};

ZRHB_EXPORT_END
