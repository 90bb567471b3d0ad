// A set of form fields and files, from which the body of a POST (or the query of a URL) is made in
// one of two encodings, URL-encoded or multipart/form-data (RFC 7578), together with its
// Content-Type line. Confidential values can be masked in a second view of the same set.
//
// Names are unique, compared exactly, and go into the outputs as they are, as file names do: that
// they hold neither quotes nor line ends, nor "&" and "=" in the URL-encoded form, is up to the
// caller. Texts count up to their first NUL byte. Nothing is sent from here. One object, one
// thread at a time. Results are 1 for success and 0 for failure; GetLastError tells why.
//
//     CZrHbDataTransmit form;
//     form.SetField("account", "4711", CZrHbDataTransmit::eDataConfidentialityType_Public);
//     form.SetField("pin", pin, CZrHbDataTransmit::eDataConfidentialityType_Confidential);
//     CString body = form.GetURLEncodedData(0);
#pragma once

#include "ZrHbFacade.h"
#include "platform/Export.h"
#include "platform/String.h"

class CZrHbDataTransmit_Impl;

ZRHB_EXPORT_BEGIN

class CZrHbDataTransmit : public CZrHbFacade<CZrHbDataTransmit, CZrHbDataTransmit_Impl> {
public:
    // How a value shows in the masked view. Any other number shows "???".
    enum EZrHbDataConfidentialityType : int {
        eDataConfidentialityType_Public = 0,       // as it is
        eDataConfidentialityType_Confidential = 1, // "[...]"
    };
    // The type line of a file's part. Any other number is text/plain.
    enum EZrHbContentType : int {
        eContentType_TextPlain = 0,
        eContentType_OctetStream = 1,
    };
    // Which values an output holds. With any other number every value is "???".
    enum EZrHbRequestDataType : int {
        eRequestDataType_Plain = 0,
        eRequestDataType_Masked = 1,
    };

    CZrHbDataTransmit();
    // The number means nothing.
    explicit CZrHbDataTransmit(const unsigned long& nReserved);
    CZrHbDataTransmit(const CZrHbDataTransmit& other);
    CZrHbDataTransmit& operator=(const CZrHbDataTransmit& other);
    ~CZrHbDataTransmit() override;

    // Adds a field, or replaces the field or file of that name in its place. The value counts up
    // to its first NUL byte. 0 for an empty name: "Fieldname is not specified: This argument
    // cannot be empty!".
    int SetField(const CString& strName, const CString& strValue,
                 const EZrHbDataConfidentialityType& eConfidentiality);
    // As SetField with the content of a file, read at once, up to its first NUL byte. 0 with an
    // error text for an empty name or path and for a file that cannot be read. An empty file adds
    // nothing and gives 1.
    int SetFile(const CString& strName, const CString& strPath,
                const EZrHbContentType& eContentType,
                const EZrHbDataConfidentialityType& eConfidentiality);
    // 1, also when there is no such field.
    int RemoveField(const CString& strName);
    void RemoveAllFields();

    // The boundary between the parts of a multipart body. A text that was set is used as it is; an
    // empty one is the same as ClearBoundary.
    void SetBoundary(const CString& strBoundary);
    CString GetBoundary() const;
    void ClearBoundary();

    // The Content-Type line, without line end. The multipart one names the boundary of the last
    // GetMultipartData: take the data first, or set a boundary. Without one, a boundary is
    // generated (see GetMultipartData). A set that never had a file gives "Content-Type:
    // form-data".
    CString GetMultipartHeader();
    CString GetURLEncodedHeader() const;

    // The body; empty without fields. Without a boundary that was set, one of 21 letters and
    // digits that does not occur in the data is generated after fields were added or replaced: the
    // thread pauses for 1000 ms each time.
    CString GetMultipartData();
    CString GetMultipartData(EZrHbRequestDataType eType);
    // The pairs "name=value" joined by "&", values encoded, names as they are; empty without
    // fields. nQuestionMark: 1 puts "?" before them. Files take part with their content.
    CString GetURLEncodedData(const int& nQuestionMark) const;
    CString GetURLEncodedData(EZrHbRequestDataType eType, const int& nQuestionMark) const;

    // Why the last operation failed; asking empties it. Without such a text, that of the thread's
    // system error code, which becomes 0.
    CString GetLastError();

private:
    friend CZrHbFacade;
    static void DestroyImpl(CZrHbDataTransmit_Impl* pImpl);
};

ZRHB_EXPORT_END
