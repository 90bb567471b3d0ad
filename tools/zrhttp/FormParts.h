// The fields and files of a form, read and checked.
#pragma once

#include <string>
#include <vector>

#include <ZrHbDataTransmit.h>

#include "zrhttp/FormOptions.h"

namespace zrhttp {

struct FormPart {
    std::string name;    // as it is sent
    std::string content; // the value as it is sent, or the file's bytes
    bool isSecret = false;
    std::string path; // of a file as it was given, else empty
    CZrHbDataTransmit::EZrHbContentType type = CZrHbDataTransmit::eContentType_OctetStream;

    bool IsFile() const { return !path.empty(); }
    bool HoldsNul() const { return content.find('\0') != std::string::npos; }
};

// In the order given; a later part replaces one of the same name in its place, and a note tells
// so. Throws UsageError for anything that could not be sent as it was meant.
std::vector<FormPart> ReadFormParts(const FormOptions& options);

} // namespace zrhttp
