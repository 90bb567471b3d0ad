// Questions to the user.
#pragma once

#include <functional>

#include "Export.h"
#include "Services.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

constexpr UINT MB_OK = 0x000;
constexpr UINT MB_OKCANCEL = 0x001;
constexpr UINT MB_YESNOCANCEL = 0x003;
constexpr UINT MB_YESNO = 0x004;
constexpr UINT MB_DEFBUTTON2 = 0x100;
constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;
constexpr int IDYES = 6;
constexpr int IDNO = 7;

namespace platform {

class Prompt {
public:
    virtual ~Prompt() = default;
    static Prompt& Real();
    // Shows the text and returns the button chosen. The real one asks on the terminal when
    // standard input and error output are one; otherwise it answers at once with the harmless
    // button (No, then Cancel, then OK) and reports what it answered.
    virtual int Ask(const CString& strText, UINT nType) = 0;
    // Shows the text and asks for a name and a password; false when the user gives none. The real
    // one asks on the terminal as above, without showing the password; otherwise it reports that
    // there is nobody to ask. Nobody answers unless a prompt says otherwise.
    // isWithdrawn: called on this thread, ten times a second, while the user has not answered;
    // once it says true, the question ends without an answer.
    virtual bool AskCredentials(const CString& /*strText*/, CString& /*strName*/,
                                CString& /*strPassword*/,
                                const std::function<bool()>& /*isWithdrawn*/) {
        return false;
    }
};

} // namespace platform

int AfxMessageBox(const char* pszText, UINT nType = MB_OK);

ZRHB_EXPORT_END
