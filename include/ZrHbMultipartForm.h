// Pieces of a multipart body (RFC 2046, RFC 7578) with the fixed boundary "xxx_mp_boundary_xxx".
//
// The caller joins pieces in the order it wants, ends with the closing piece, and announces the
// boundary in the request's Content-Type. Three generations of pieces stay side by side; their
// layout is fixed by the servers that read them. Texts go in as they are, up to their first NUL
// byte: that names and file names hold neither quotes nor line ends, and that the boundary does
// not occur in the content, is up to the caller. All functions are static and keep no state; any
// thread. Failed reads are told in strErr ("Cannot read file 'PATH': REASON"), which is left as it
// was by a read that succeeds.
#pragma once

#include "ByteBuffer.h"
#include "platform/Export.h"
#include "platform/String.h"

ZRHB_EXPORT_BEGIN

class CZrHbMultipartForm {
public:
    // --- Generation 1: lines end with LF, nothing is quoted but file names --------------------

    // No empty line stands between the disposition line and the value.
    static CString MultipartFormData(const CString& strName, const CString& strValue);
    static CString MultipartAttachment(const CString& strFileName, const CString& strContent);
    // The file's content as text. A file that cannot be read gives a piece without content.
    static CString MultipartAttachFromFile(const CString& strFileName, const CString& strPath,
                                           CString& strErr);
    static CString MultipartEnd();

    // --- Generation 2: lines end with CR LF, files are text/plain -----------------------------

    static CString MultipartFormData2(const CString& strName, const CString& strValue);
    // Line ends in the content become CR LF; a lone CR stays.
    static CString MultipartAttachment2(const CString& strFileName, const CString& strContent,
                                        const CString& strFieldName);
    // As MultipartAttachFromFile.
    static CString MultipartAttachFromFile2(const CString& strFileName, const CString& strPath,
                                            CString& strErr, const CString& strFieldName);
    static CString MultipartEnd2();

    // --- Generation 3: the caller gives the type line, such as "Content-Type: image/png" ------
    // Bodies of this generation end with MultipartEnd2.

    // Line ends in the content become CR LF.
    static CString MultipartAttachFileFromMemory3(const CString& strFileName,
                                                  const CString& strContent,
                                                  const CString& strFieldName,
                                                  const CString& strTypeLine);
    // Empty when strErr is not empty after the read.
    static CString MultipartAttachFromFile3(const CString& strFileName, const CString& strPath,
                                            const CString& strFieldName, const CString& strTypeLine,
                                            CString& strErr);
    // Appends a part with the file's bytes, unchanged, to the buffer. 1; 0 when the file could not
    // be read: the buffer then ends with the part's head.
    static int MultipartAttachFromFile_AsByteBuffer(const CString& strFileName,
                                                    const CString& strPath,
                                                    const CString& strFieldName,
                                                    const CString& strTypeLine,
                                                    CByteBuffer* pBuffer, CString& strErr);

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }
};

ZRHB_EXPORT_END
