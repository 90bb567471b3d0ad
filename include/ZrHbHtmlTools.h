// Tools for pages. All functions are static and keep no state.
#pragma once

#include <ByteBuffer.h>
#include <platform/Browser.h>
#include <platform/String.h>

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

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }
};
