// The framework's exceptions. They are thrown and caught by pointer; whoever catches one calls
// Delete() on it when done.
#pragma once

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

class CException {
public:
    CException(const CException&) = delete;
    CException& operator=(const CException&) = delete;
    // Writes at most nMaxError bytes including the NUL; FALSE, and an empty text, when the
    // exception has none.
    virtual BOOL GetErrorMessage(char* pszError, UINT nMaxError) const;
    void Delete() { delete this; }

protected:
    explicit CException(const CString& strMessage = CString()) : m_message(strMessage) {}
    virtual ~CException() = default;

private:
    CString m_message;
};

// An automation call failed with a status code.
class COleException : public CException {
public:
    const HRESULT m_sc;
    explicit COleException(HRESULT sc, const CString& strMessage = CString())
        : CException(strMessage), m_sc(sc) {}
};

// An automation object reported a failure with a description.
class COleDispatchException : public CException {
public:
    CString m_strDescription;
    explicit COleDispatchException(const CString& strDescription)
        : CException(strDescription), m_strDescription(strDescription) {}
};

class CFileException : public CException {
public:
    const DWORD m_lOsError;
    CFileException(DWORD dwError, const CString& strMessage)
        : CException(strMessage), m_lOsError(dwError) {}
};

[[noreturn]] void AfxThrowOleException(HRESULT sc);
[[noreturn]] void AfxThrowOleDispatchException(const CString& strDescription);
[[noreturn]] void AfxThrowFileException(DWORD dwError, const CString& strFileName);

ZRHB_EXPORT_END
