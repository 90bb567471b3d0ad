// Takes the values out of a reply in which the server has hidden them: an HTML comment that begins
// with a marker word and holds names and values.
//
//     comment = ( "<!-- BRIGHTRELAY " / "<!--BRIGHTRELAY " ) *( pair / text ) "-->"
//     pair    = name "=" ( plain " " / DQUOTE quoted DQUOTE " " )
//
// One object, one thread at a time. Nothing is logged; failures leave a text and the code -1.
#pragma once

#include "ZrHbFacade.h"
#include "platform/Export.h"
#include "platform/String.h"

class CZrHbBrightrelayReply_Impl;

ZRHB_EXPORT_BEGIN

class CZrHbBrightrelayReply
    : public CZrHbFacade<CZrHbBrightrelayReply, CZrHbBrightrelayReply_Impl> {
public:
    enum EZrHbTagType {
        eTagType_Plain = 0,  // ends at the next blank; so does any other number
        eTagType_Quoted = 1, // in double quotes, with a blank behind
    };

    CZrHbBrightrelayReply();
    CZrHbBrightrelayReply(const CZrHbBrightrelayReply& other);
    CZrHbBrightrelayReply& operator=(const CZrHbBrightrelayReply& other);
    ~CZrHbBrightrelayReply() override;

    // Takes the comment out of a page and removes its line ends; forgets an earlier one. The
    // marker with a blank before the word is preferred. 1, or 0 with "Cannot find tag %s or %s in
    // the message to parse!" or "Cannot find end-tag %s in the message to parse!".
    int Init(const CString& strMessage);
    // Back to the state after construction.
    void Cleanup();
    int IsObjectInitialized() const;
    // The comment with its markers; empty, with "Object is not initialized. Please use Init()
    // first.", before a successful Init.
    CString GetBrightrelayReply();
    // The text between the first occurrence of the name with its "=" (also at the end of a longer
    // name) and the end that the type asks for. Empty when the name, or the blank behind the
    // value, is not there. strName may end with "=".
    CString GetValue(const CString& strName, EZrHbTagType eType);
    // The plain value of "STATUS".
    CString GetStatusValue();
    // 1 when the status is "0".
    int IsStatusOkay();
    // -1 after a failure, which only Cleanup (or Init after a successful Init) forgets, else 0;
    // strErr becomes the last failure's text.
    int GetLastParserError(CString& strErr) const;

private:
    friend CZrHbFacade;
    static void DestroyImpl(CZrHbBrightrelayReply_Impl* pImpl);
};

ZRHB_EXPORT_END
