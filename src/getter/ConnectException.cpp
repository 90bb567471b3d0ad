#include "getter/ConnectException.h"

#include <exception>
#include <vector>

#include <platform/Exceptions.h>
#include <platform/LastError.h>

#include <ZrHbErrorHandling.h>

namespace {

constexpr UINT kMaxMessage = 2000;

// The exception's own message, cut to 2000 characters; empty when it has none.
CString MessageOf(const CException& exception) {
    std::vector<char> text(kMaxMessage + 1);
    return exception.GetErrorMessage(text.data(), kMaxMessage + 1) ? CString(text.data())
                                                                   : CString();
}

CString DetailOf(const COleException& exception) {
    CString detail = MessageOf(exception);
    if (detail.IsEmpty())
        detail.Format("Unknown Error: COleException occured but no error message available! "
                      "(m_sc=0x%08x)",
                      static_cast<unsigned>(exception.m_sc));
    return detail;
}

CString DetailOf(const CException& exception) {
    const CString detail = MessageOf(exception);
    if (!detail.IsEmpty()) return detail;
    return "Unknown Error: CException occured but no error message available!";
}

CString DetailOfUnknown() {
    const DWORD error = GetLastError();
    if (error == ERROR_MOD_NOT_FOUND)
        return "Exception / System error \"Module Not Found\" : Probably some DLL cannot be "
               "found.\n";
    CString detail;
    detail.Format("Unknown Exception 0x%08x\n", error);
    return detail;
}

CString FailureText(const char* pszBrowserName, const char* pszKind, const CString& strDetail) {
    CString text;
    text.Format("Connect (to %s) failed because of an %s! (%s)", pszBrowserName, pszKind,
                strDetail.GetString());
    return text;
}

} // namespace

CString DescribeConnectException(const char* pszBrowserName) {
    try {
        throw;
    } catch (COleException* exception) {
        const CString text = FailureText(pszBrowserName, "COleException", DetailOf(*exception));
        exception->Delete();
        return text;
    } catch (COleDispatchException* exception) {
        const CString text =
            FailureText(pszBrowserName, "COleDispatchException", exception->m_strDescription);
        exception->Delete();
        return text;
    } catch (CException* exception) {
        const CString text = FailureText(pszBrowserName, "CException", DetailOf(*exception));
        exception->Delete();
        return text;
    } catch (const std::exception& exception) {
        return FailureText(pszBrowserName, "'exception'", exception.what());
    } catch (...) {
        return FailureText(pszBrowserName, "Exception(...)", DetailOfUnknown());
    }
}
