// Tools for pages and for texts on the wire. All functions are static and keep no state; any
// thread, but for those on documents. Pages are 8-bit text; all costs are linear in the texts
// given.
#pragma once

#include "ByteBuffer.h"
#include "platform/Browser.h"
#include "platform/Export.h"
#include "platform/String.h"

ZRHB_EXPORT_BEGIN

class CZrHbHtmlTools {
public:
    // Drains a stream from its current position into the page, which is emptied first, in chunks
    // of 4096 bytes. Text form: each chunk ends at its first NUL byte. Byte form: every byte.
    // Result 0 with nLength set (bytes) and strErr empty; 22 "Internal error: Stream->Read failed"
    // with the page read so far and nLength untouched.
    static DWORD ReadFromIStream(IStream* pStream, CString& page, CString& strErr, DWORD& nLength);
    static DWORD ReadFromIStream(IStream* pStream, CByteBuffer& page, CString& strErr,
                                 DWORD& nLength);

    // Takes a document's source, as the browser received it.
    // pDocument: the browser's get_Document result; stays the caller's. nReadyState: the browser's
    // ready state. bBodyFallback: non-zero takes the body's outer HTML from a document that cannot
    // write its source.
    // nResult: 0 with the page and its length in bytes (nLength untouched by the body fallback);
    // 10 "Read has not completed yet." with page and length so far, at ready state 3; 22 with
    // strErr telling which call failed.
    static void GetSourceFromDocumentDispatchPtr(IDispatch* pDocument, DWORD& nResult,
                                                 CString& page, CString& strErr, DWORD& nLength,
                                                 long nReadyState, int bBodyFallback);
    static void GetSourceFromDocumentDispatchPtr(IDispatch* pDocument, DWORD& nResult,
                                                 CByteBuffer& page, CString& strErr, DWORD& nLength,
                                                 long nReadyState, int bBodyFallback);

    // --- Text out of pages --------------------------------------------------------------------

    // Every tag becomes one blank: from "<" through the next ">", or the end of the page. A "<"
    // inside a tag gives a blank of its own. No comments, no quoted attributes: the first ">" ends
    // the tag.
    static void HtmlPageRemoveTags(CString& page);
    // Removes everything from the start text through the end text behind it, without regard to the
    // case of ASCII letters, until there is no such section left (a removal may join what becomes
    // a new start). A section without end stays. The end is searched from the beginning of the
    // start text on. An empty end text changes nothing, an empty start text is found at the
    // beginning of the page. Linear in the page and both texts together, however long they are.
    static void HtmlPageRemoveSections(CString& page, const CString& strStart,
                                       const CString& strEnd);
    // Decodes numeric references ("&#65;", modulo 256) and the named ones of ISO 8859-1 (HTML
    // 4.01; the name may be followed by anything), once; then removes every "&" that is left, also
    // those that a reference stands for. A non-breaking space vanishes. nFormat: non-zero turns
    // line ends into blanks and "<br>" and "<BR>" into LF, and joins blanks.
    static void HtmlPageDecode(CString& page, int nFormat);
    // The readable text of a page, ending with one LF: head, styles and scripts removed, tags
    // removed, references decoded, line ends after headings and "<br>", blanks joined, at most one
    // empty line between two lines, none with nCompact non-zero.
    static void HtmlPageMakePureText(CString& page, int nCompact);
    // The text between "<name>" and the next "</name>", compared exactly, so that a tag with
    // attributes is not found. FALSE, with the result as it was, when there is none; FALSE for an
    // empty result when nFailIfEmpty is non-zero. nTrim: non-zero trims white space at both ends.
    // ppContinue, if given, becomes a position in pszText: behind the closing tag, or the
    // beginning when there is none.
    static int GetInfoBetweenHtmlTags(const char* pszText, const char* pszTagName,
                                      CString& strResult, int nTrim, int nFailIfEmpty,
                                      char** ppContinue);

    // --- Encodings ----------------------------------------------------------------------------

    // For values in application/x-www-form-urlencoded data: letters and digits stay, a blank
    // becomes "+", every other byte "%XX".
    static CString URLEncodeString(const CString& strText);
    // Every byte as the code point of its value (ISO 8859-1, not the ANSI code page) in UTF-8.
    static CString AnsiToUTF8(const CString& strText);
    // UTF-8 as text in the ANSI code page; "?" for characters that it lacks and for each part that
    // is not UTF-8.
    static CString UTF8ToAnsi(const CString& strUtf8);

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }
};

ZRHB_EXPORT_END
