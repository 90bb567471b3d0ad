#include "compose/ZrHbDataTransmit_Impl.h"

#include <utility>

#include <platform/LastError.h>

#include "compose/Boundary.h"
#include "compose/MultipartBody.h"
#include "compose/TextPieces.h"
#include "compose/UrlEncodedPairs.h"
#include "siblings/ZrCbFileSystem.h"
#include "siblings/ZrCbSystem.h"

namespace {

// Names are C texts.
CString WithoutNul(const CString& strText) {
    return strText.GetString();
}

CString FileNameOf(const CString& strPath) {
    CString strDrive, strDirectory, strName, strExtension;
    CZrCbFileSystem::SplitPath(strPath, strDrive, strDirectory, strName, strExtension);
    return strName + strExtension;
}

CString DrawBoundary(unsigned nAttempt) {
    return CString(platform::Current<BoundarySource>().Draw(nAttempt));
}

} // namespace

int CZrHbDataTransmit_Impl::Fail(const CString& strError) {
    m_lastError = strError;
    return 0;
}

int CZrHbDataTransmit_Impl::SetField(const CString& strName, const CString& strValue,
                                     Confidentiality eConfidentiality) {
    auto record = std::make_unique<DataField>();
    record->strName = WithoutNul(strName);
    if (record->strName.IsEmpty())
        return Fail("Fieldname is not specified: This argument cannot be empty!");
    record->value = strValue.GetString();
    record->eConfidentiality = eConfidentiality;
    return AddFieldRecord(std::move(record));
}

int CZrHbDataTransmit_Impl::SetFile(const CString& strName, const CString& strPath,
                                    CZrHbDataTransmit::EZrHbContentType eContentType,
                                    Confidentiality eConfidentiality) {
    auto record = std::make_unique<DataField>();
    record->strName = WithoutNul(strName);
    const CString path = WithoutNul(strPath);
    if (record->strName.IsEmpty() || path.IsEmpty())
        return Fail(TextPieces::Join({"Fieldname is not specified!\nFilename: ", path.View(),
                                      "\nField name: ", record->strName.View(),
                                      "\nThis argument cannot be empty!"}));
    record->strFileName = FileNameOf(path);
    CString strContent, strErr;
    const int nRead = CZrCbFileSystem::GetFileAsText(path, strContent, strErr);
    if (nRead != 1 || strContent.IsEmpty() || !strErr.IsEmpty()) {
        m_lastError = strErr;
        return nRead;
    }
    record->value = strContent.GetString();
    record->eContentType = eContentType;
    record->eConfidentiality = eConfidentiality;
    m_hasFile = true;
    return AddFieldRecord(std::move(record));
}

int CZrHbDataTransmit_Impl::AddFieldRecord(std::unique_ptr<DataField> record) {
    if (!record) return Fail("Invalid pointer to structure: No data to add!");
    m_fields.Put(std::move(*record));
    m_isBoundaryVerified = false;
    return 1;
}

void CZrHbDataTransmit_Impl::RemoveField(const CString& strName) {
    m_fields.Remove(WithoutNul(strName));
}

void CZrHbDataTransmit_Impl::SetBoundary(const CString& strBoundary) {
    m_boundary = WithoutNul(strBoundary);
    m_isBoundaryFixed = !m_boundary.IsEmpty();
    m_isBoundaryVerified = false;
}

// The data are finite, and what is drawn is not to be foreseen: this ends.
void CZrHbDataTransmit_Impl::VerifyBoundary() {
    for (unsigned attempt = 0; !m_isBoundaryFixed && !m_isBoundaryVerified; ++attempt) {
        m_boundary = DrawBoundary(attempt);
        m_isBoundaryVerified = !MultipartBody::Holds(m_fields, m_boundary.View());
    }
}

CString CZrHbDataTransmit_Impl::MultipartHeader() {
    if (m_boundary.IsEmpty()) m_boundary = DrawBoundary(0);
    if (!m_hasFile) return "Content-Type: form-data";
    return "Content-Type: multipart/form-data; boundary=" + m_boundary;
}

CString CZrHbDataTransmit_Impl::MultipartData(CZrHbDataTransmit::EZrHbRequestDataType eType) {
    VerifyBoundary();
    return MultipartBody::Compose(m_fields, m_boundary.View(), eType);
}

CString CZrHbDataTransmit_Impl::URLEncodedData(CZrHbDataTransmit::EZrHbRequestDataType eType,
                                               int nQuestionMark) const {
    return UrlEncodedPairs::Compose(m_fields, nQuestionMark == 1 ? "?" : "", eType);
}

CString CZrHbDataTransmit_Impl::TakeLastError() {
    if (m_lastError.IsEmpty()) {
        m_lastError = CZrCbSystem::GetLastErrorText(GetLastError());
        SetLastError(ERROR_SUCCESS);
    }
    return std::exchange(m_lastError, CString());
}
