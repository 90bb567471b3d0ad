// What a call throws, as a text.
#pragma once

#include <string>

#include <platform/Exceptions.h>

namespace test_support {

// The description of an automation exception, or its code in hexadecimal; "file error N" for a
// file's; "nothing". Other exceptions go on.
std::string ThrownBy(const auto& call) {
    std::string text = "nothing";
    try {
        call();
    } catch (COleDispatchException* exception) {
        text = exception->m_strDescription.View();
        exception->Delete();
    } catch (COleException* exception) {
        CString code;
        code.Format("%08x", static_cast<unsigned>(exception->m_sc));
        text = code.View();
        exception->Delete();
    } catch (CFileException* exception) {
        text = "file error " + std::to_string(exception->m_lOsError);
        exception->Delete();
    }
    return text;
}

} // namespace test_support
