// The form data set's facade: everything is done by its implementation object.

#include <ZrHbDataTransmit.h>

#include "compose/ZrHbDataTransmit_Impl.h"

CZrHbDataTransmit::CZrHbDataTransmit() {
    CreateImpl(std::make_unique<CZrHbDataTransmit_Impl>());
}

CZrHbDataTransmit::CZrHbDataTransmit(const unsigned long&) : CZrHbDataTransmit() {}

CZrHbDataTransmit::CZrHbDataTransmit(const CZrHbDataTransmit& other) {
    CreateCopy(other);
}

CZrHbDataTransmit& CZrHbDataTransmit::operator=(const CZrHbDataTransmit& other) {
    AssignCopy(other);
    return *this;
}

CZrHbDataTransmit::~CZrHbDataTransmit() {
    RemoveAllFields();
    DeleteImpl();
}

void CZrHbDataTransmit::DestroyImpl(CZrHbDataTransmit_Impl* pImpl) {
    std::default_delete<CZrHbDataTransmit_Impl>()(pImpl);
}

int CZrHbDataTransmit::SetField(const CString& strName, const CString& strValue,
                                const EZrHbDataConfidentialityType& eConfidentiality) {
    return GetImpl() ? GetImpl()->SetField(strName, strValue, eConfidentiality) : 0;
}

int CZrHbDataTransmit::SetFile(const CString& strName, const CString& strPath,
                               const EZrHbContentType& eContentType,
                               const EZrHbDataConfidentialityType& eConfidentiality) {
    return GetImpl() ? GetImpl()->SetFile(strName, strPath, eContentType, eConfidentiality) : 0;
}

int CZrHbDataTransmit::RemoveField(const CString& strName) {
    if (!GetImpl()) return 0;
    GetImpl()->RemoveField(strName);
    return 1;
}

void CZrHbDataTransmit::RemoveAllFields() {
    if (GetImpl()) GetImpl()->RemoveAllFields();
}

void CZrHbDataTransmit::SetBoundary(const CString& strBoundary) {
    if (GetImpl()) GetImpl()->SetBoundary(strBoundary);
}

CString CZrHbDataTransmit::GetBoundary() const {
    return GetImpl() ? GetImpl()->Boundary() : CString();
}

void CZrHbDataTransmit::ClearBoundary() {
    SetBoundary(CString());
}

CString CZrHbDataTransmit::GetMultipartHeader() {
    return GetImpl() ? GetImpl()->MultipartHeader() : CString();
}

CString CZrHbDataTransmit::GetURLEncodedHeader() const {
    return GetImpl() ? "Content-Type: application/x-www-form-urlencoded" : CString();
}

CString CZrHbDataTransmit::GetMultipartData() {
    return GetMultipartData(eRequestDataType_Plain);
}

CString CZrHbDataTransmit::GetMultipartData(EZrHbRequestDataType eType) {
    return GetImpl() ? GetImpl()->MultipartData(eType) : CString();
}

CString CZrHbDataTransmit::GetURLEncodedData(const int& nQuestionMark) const {
    return GetURLEncodedData(eRequestDataType_Plain, nQuestionMark);
}

CString CZrHbDataTransmit::GetURLEncodedData(EZrHbRequestDataType eType,
                                             const int& nQuestionMark) const {
    return GetImpl() ? GetImpl()->URLEncodedData(eType, nQuestionMark) : CString();
}

CString CZrHbDataTransmit::GetLastError() {
    return GetImpl() ? GetImpl()->TakeLastError() : CString();
}
