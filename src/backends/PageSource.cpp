// Taking the source of a loaded document out of the browser.

#include <ZrHbHtmlTools.h>
#include <ZrHbResultCodes.h>

#include "backends/BackendTexts.h"

namespace {

constexpr ULONG kChunkSize = 4096;

void Clear(CString& page) {
    page.Empty();
}
void Clear(CByteBuffer& page) {
    page.RemoveAll();
}

// The chunk is NUL-terminated; a text page takes it up to its first NUL byte.
void Append(CString& page, const char* chunk, ULONG) {
    page += chunk;
}
void Append(CByteBuffer& page, const char* chunk, ULONG count) {
    page.Add(chunk, count);
}

DWORD Length(const CString& page) {
    return static_cast<DWORD>(page.GetLength());
}
DWORD Length(const CByteBuffer& page) {
    return page.GetSize();
}

void Assign(CString& page, const CString& text) {
    page = text;
}
void Assign(CByteBuffer& page, const CString& text) {
    page = text.GetString();
}

template <class TPage>
DWORD Drain(IStream* stream, TPage& page, CString& strErr, DWORD& nLength) {
    char chunk[kChunkSize + 1];
    Clear(page);
    for (;;) {
        ULONG count = 0;
        if (FAILED(stream->Read(chunk, kChunkSize, &count))) {
            strErr = "Internal error: Stream->Read failed";
            return ZRHB_READ_FAILED;
        }
        chunk[count] = 0;
        Append(page, chunk, count);
        if (count == 0) break;
    }
    nLength = Length(page);
    strErr.Empty();
    return ZRHB_OK;
}

// The document's source through its persistence interface.
template <class TPage>
DWORD ReadPersisted(IPersistStreamInit& persist, TPage& page, CString& strErr, DWORD& nLength) {
    CComPtr<IStream> stream;
    CComPtr<IStream> clone;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &stream))) {
        strErr = "Internal error: CreateStream... failed.";
        return ZRHB_READ_FAILED;
    }
    // The clone stays at the start while the document writes.
    if (FAILED(stream->Clone(&clone))) {
        strErr = "Internal error: Clone failed.";
        return ZRHB_READ_FAILED;
    }
    const HRESULT hr = persist.Save(stream.Get(), FALSE);
    if (FAILED(hr)) {
        strErr.Format("Internal error: pIPersistStreamInit->Save failed (hr = %u). You may need to "
                      "reboot your machine.",
                      static_cast<unsigned>(hr));
        return ZRHB_READ_FAILED;
    }
    return Drain(clone.Get(), page, strErr, nLength);
}

// A page around the outer HTML of the document's body; appends to strErr what is missing.
bool ReadBody(IDispatch& document, CString& page, CString& strErr) {
    CComPtr<IHTMLDocument2> html;
    CComPtr<IHTMLElement> body;
    CComBSTR outerHtml;
    if (FAILED(CComPtr<IDispatch>(&document).QueryInterface(&html))) {
        strErr += " and QueryInterface(IID_IHTMLDocument2) failed, too.";
        return false;
    }
    if (FAILED(html->get_body(&body)) || !body) {
        strErr += " and get_body() failed, too!";
        return false;
    }
    if (FAILED(body->get_outerHTML(&outerHtml))) {
        strErr += " and get_outerHTML() failed, too!";
        return false;
    }
    page = "<HTML><HEAD>\n"
           "<TITLE>Info: so far I can only read the body of this page - not the complete source!"
           "</TITLE>\n"
           "</HEAD>\n" +
           outerHtml.ToAnsi() + "\n</HTML>\n";
    strErr.Empty();
    return true;
}

template <class TPage>
DWORD ReadDocument(IDispatch& document, TPage& page, CString& strErr, DWORD& nLength,
                   long nReadyState, int bBodyFallback) {
    CComPtr<IPersistStreamInit> persist;
    if (FAILED(CComPtr<IDispatch>(&document).QueryInterface(&persist))) {
        strErr = "Internal error: QueryInterface(IID_IPersistStreamInit...) failed.";
        CString body;
        if (!bBodyFallback || !ReadBody(document, body, strErr)) return ZRHB_READ_FAILED;
        Assign(page, body);
        return ZRHB_OK;
    }
    const DWORD result = ReadPersisted(*persist, page, strErr, nLength);
    if (result != ZRHB_OK || nReadyState != READYSTATE_INTERACTIVE) return result;
    strErr = BackendTexts::kNotCompleted;
    return ZRHB_STILL_LOADING;
}

} // namespace

DWORD CZrHbHtmlTools::ReadFromIStream(IStream* pStream, CString& page, CString& strErr,
                                      DWORD& nLength) {
    return Drain(pStream, page, strErr, nLength);
}

DWORD CZrHbHtmlTools::ReadFromIStream(IStream* pStream, CByteBuffer& page, CString& strErr,
                                      DWORD& nLength) {
    return Drain(pStream, page, strErr, nLength);
}

void CZrHbHtmlTools::GetSourceFromDocumentDispatchPtr(IDispatch* pDocument, DWORD& nResult,
                                                      CString& page, CString& strErr,
                                                      DWORD& nLength, long nReadyState,
                                                      int bBodyFallback) {
    nResult = ReadDocument(*pDocument, page, strErr, nLength, nReadyState, bBodyFallback);
}

void CZrHbHtmlTools::GetSourceFromDocumentDispatchPtr(IDispatch* pDocument, DWORD& nResult,
                                                      CByteBuffer& page, CString& strErr,
                                                      DWORD& nLength, long nReadyState,
                                                      int bBodyFallback) {
    nResult = ReadDocument(*pDocument, page, strErr, nLength, nReadyState, bBodyFallback);
}
