// One field or file of a form data set.
#pragma once

#include <string_view>

#include <ByteBuffer.h>
#include <ZrHbDataTransmit.h>

struct DataField {
    // Valid until the value changes.
    std::string_view Value() const {
        return {reinterpret_cast<const char*>(value.GetData()), value.GetSize()};
    }

    CByteBuffer value{1024, 256};
    CString strName;     // never empty; no NUL byte, nor in the file name
    CString strFileName; // without drive and directory; empty for a plain field
    CZrHbDataTransmit::EZrHbContentType eContentType = CZrHbDataTransmit::eContentType_TextPlain;
    CZrHbDataTransmit::EZrHbDataConfidentialityType eConfidentiality =
        CZrHbDataTransmit::eDataConfidentialityType_Public;
};
