#include <platform/Exceptions.h>

#include <cstring>
#include <memory>

#include <platform/LastError.h>

#include "system/SystemTexts.h"

BOOL CException::GetErrorMessage(char* pszError, UINT nMaxError) const {
    if (nMaxError == 0) return FALSE;
    const CString strShown = m_message.Left(static_cast<int>(nMaxError - 1));
    std::memcpy(pszError, strShown.GetString(), static_cast<std::size_t>(strShown.GetLength()) + 1);
    return m_message.IsEmpty() ? FALSE : TRUE;
}

void AfxThrowOleException(HRESULT sc) {
    const char* const pszText = platform::FindSystemText(static_cast<DWORD>(sc));
    throw std::make_unique<COleException>(sc, pszText).release();
}

void AfxThrowOleDispatchException(const CString& strDescription) {
    throw std::make_unique<COleDispatchException>(strDescription).release();
}

void AfxThrowFileException(DWORD dwError, const CString& strFileName) {
    const CString strMessage = strFileName + ": " + platform::SystemErrorText(dwError);
    throw std::make_unique<CFileException>(dwError, strMessage).release();
}
