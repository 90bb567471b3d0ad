// The state of a form data set, and what changes it.
#pragma once

#include <memory>

#include "compose/FieldList.h"

class CZrHbDataTransmit_Impl {
public:
    using Confidentiality = CZrHbDataTransmit::EZrHbDataConfidentialityType;

    int SetField(const CString& strName, const CString& strValue, Confidentiality eConfidentiality);
    int SetFile(const CString& strName, const CString& strPath,
                CZrHbDataTransmit::EZrHbContentType eContentType, Confidentiality eConfidentiality);
    // Takes the place of the record of that name, or goes to the end. 0 for a null record.
    int AddFieldRecord(std::unique_ptr<DataField> record);
    void RemoveField(const CString& strName);
    void RemoveAllFields() { m_fields.Clear(); }

    void SetBoundary(const CString& strBoundary);
    const CString& Boundary() const { return m_boundary; }

    CString MultipartHeader();
    CString MultipartData(CZrHbDataTransmit::EZrHbRequestDataType eType);
    CString URLEncodedData(CZrHbDataTransmit::EZrHbRequestDataType eType, int nQuestionMark) const;
    CString TakeLastError();

private:
    int Fail(const CString& strError);
    void VerifyBoundary();

    FieldList m_fields;
    CString m_lastError;
    CString m_boundary;
    bool m_isBoundaryFixed = false;    // the caller's own
    bool m_isBoundaryVerified = false; // does not occur in the fields as they are
    bool m_hasFile = false;            // stays when the file is removed
};
