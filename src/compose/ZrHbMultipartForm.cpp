// The pieces of multipart bodies in their three generations.

#include <ZrHbMultipartForm.h>

#include <string>
#include <string_view>
#include <utility>

#include "compose/LineEnds.h"
#include "compose/TextPieces.h"
#include "siblings/ZrCbFileSystem.h"

namespace {

using TextPieces::Join;
using TextPieces::UpToNul;

constexpr std::string_view kDelimiter = "--xxx_mp_boundary_xxx";

// A file's part up to its content, in the layout of the generations 2 and 3.
CString PartHead(const CString& strFieldName, const CString& strFileName,
                 std::string_view typeLine) {
    return Join({kDelimiter, "\r\nContent-Disposition: form-data; name=\"", UpToNul(strFieldName),
                 "\"; filename=\"", UpToNul(strFileName), "\"\r\n", typeLine, "\r\n\r\n"});
}

CString TextPart(const CString& strFieldName, const CString& strFileName, std::string_view typeLine,
                 const CString& strContent) {
    constexpr std::string_view kTail = "\r\n";
    const CString head = PartHead(strFieldName, strFileName, typeLine);
    const std::string_view content = UpToNul(strContent);
    std::string part;
    part.reserve(head.View().size() + LineEnds::LengthWithCrLf(content) + kTail.size());
    part += head.View();
    LineEnds::AppendWithCrLf(part, content);
    part += kTail;
    return CString(std::move(part));
}

// Empty when the file cannot be read.
CString ReadText(const CString& strPath, CString& strErr) {
    CString strContent;
    CZrCbFileSystem::GetFileAsText(strPath, strContent, strErr);
    return strContent;
}

} // namespace

CString CZrHbMultipartForm::MultipartFormData(const CString& strName, const CString& strValue) {
    return Join({kDelimiter, "\nContent-Disposition: form-data; name=", UpToNul(strName), "\n",
                 UpToNul(strValue), "\n"});
}

CString CZrHbMultipartForm::MultipartAttachment(const CString& strFileName,
                                                const CString& strContent) {
    return Join({kDelimiter, "\nContent-Disposition: attachment; filename=\"", UpToNul(strFileName),
                 "\"\n", UpToNul(strContent), "\n"});
}

CString CZrHbMultipartForm::MultipartAttachFromFile(const CString& strFileName,
                                                    const CString& strPath, CString& strErr) {
    return MultipartAttachment(strFileName, ReadText(strPath, strErr));
}

CString CZrHbMultipartForm::MultipartEnd() {
    return Join({kDelimiter, "--\n"});
}

CString CZrHbMultipartForm::MultipartFormData2(const CString& strName, const CString& strValue) {
    return Join({kDelimiter, "\r\nContent-Disposition: form-data; name=\"", UpToNul(strName),
                 "\"\r\n\r\n", UpToNul(strValue), "\r\n"});
}

CString CZrHbMultipartForm::MultipartAttachment2(const CString& strFileName,
                                                 const CString& strContent,
                                                 const CString& strFieldName) {
    return TextPart(strFieldName, strFileName, "Content-Type: text/plain", strContent);
}

CString CZrHbMultipartForm::MultipartAttachFromFile2(const CString& strFileName,
                                                     const CString& strPath, CString& strErr,
                                                     const CString& strFieldName) {
    return MultipartAttachment2(strFileName, ReadText(strPath, strErr), strFieldName);
}

CString CZrHbMultipartForm::MultipartEnd2() {
    return Join({kDelimiter, "--\r\n"});
}

CString CZrHbMultipartForm::MultipartAttachFileFromMemory3(const CString& strFileName,
                                                           const CString& strContent,
                                                           const CString& strFieldName,
                                                           const CString& strTypeLine) {
    return TextPart(strFieldName, strFileName, UpToNul(strTypeLine), strContent);
}

CString CZrHbMultipartForm::MultipartAttachFromFile3(const CString& strFileName,
                                                     const CString& strPath,
                                                     const CString& strFieldName,
                                                     const CString& strTypeLine, CString& strErr) {
    const CString content = ReadText(strPath, strErr);
    if (!strErr.IsEmpty()) return CString();
    return MultipartAttachFileFromMemory3(strFileName, content, strFieldName, strTypeLine);
}

int CZrHbMultipartForm::MultipartAttachFromFile_AsByteBuffer(
    const CString& strFileName, const CString& strPath, const CString& strFieldName,
    const CString& strTypeLine, CByteBuffer* pBuffer, CString& strErr) {
    pBuffer->Add(PartHead(strFieldName, strFileName, UpToNul(strTypeLine)).GetString());
    if (!CZrCbFileSystem::GetFileAsBinary(strPath, pBuffer, strErr)) return 0;
    pBuffer->Add("\r\n");
    return 1;
}
