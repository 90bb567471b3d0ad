#include "zrhttp/FormBody.h"

#include <algorithm>

#include <ZrHbMultipartForm.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/HttpGrammar.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

// The library's builders know this one only.
constexpr const char* kBuilderBoundary = "xxx_mp_boundary_xxx";
constexpr const char* kMask = "[...]";
constexpr std::size_t kLongestBoundary = 70; // RFC 2046

struct Composed {
    std::string header; // the Content-Type line
    std::string body;
};

std::string Text(const CString& text) {
    return std::string(text.View());
}

CZrHbDataTransmit MakeDataSet(const std::vector<FormPart>& parts) {
    CZrHbDataTransmit form;
    for (const FormPart& part : parts) {
        const CString name(part.name.c_str());
        const auto confidentiality = part.isSecret
                                         ? CZrHbDataTransmit::eDataConfidentialityType_Confidential
                                         : CZrHbDataTransmit::eDataConfidentialityType_Public;
        const int result = part.IsFile()
                               ? form.SetFile(name, part.path.c_str(), part.type, confidentiality)
                               : form.SetField(name, part.content.c_str(), confidentiality);
        if (!result) throw SystemError(TextFromBytes(form.GetLastError().View()));
    }
    return form;
}

CZrHbDataTransmit::EZrHbRequestDataType View(const FormOptions& options) {
    return options.isMasked ? CZrHbDataTransmit::eRequestDataType_Masked
                            : CZrHbDataTransmit::eRequestDataType_Plain;
}

Composed ComposePairs(const FormOptions& options, const std::vector<FormPart>& parts) {
    const CZrHbDataTransmit form = MakeDataSet(parts);
    const bool isQuery = options.encoding == "query";
    return {Text(form.GetURLEncodedHeader()),
            Text(form.GetURLEncodedData(View(options), isQuery ? 1 : 0))};
}

Composed ComposeDataSet(const FormOptions& options, const std::vector<FormPart>& parts) {
    CZrHbDataTransmit form = MakeDataSet(parts);
    if (options.boundary) form.SetBoundary(options.boundary->c_str());
    const CString body = form.GetMultipartData(View(options));
    return {Text(form.GetMultipartHeader()), Text(body)}; // the header tells the body's boundary
}

CString FileNameOf(const std::string& path) {
    return CString(std::string_view(path).substr(path.find_last_of("/\\:") + 1));
}

// The same layout with the bytes of files as they are, also behind NUL bytes.
Composed ComposeBytes(const FormOptions& options, const std::vector<FormPart>& parts) {
    CByteBuffer body(65536, 65536);
    for (const FormPart& part : parts) {
        const CString name(part.name.c_str());
        if (!part.IsFile()) {
            const char* value = options.isMasked && part.isSecret ? kMask : part.content.c_str();
            body += CZrHbMultipartForm::MultipartFormData2(name, value);
            continue;
        }
        const bool isText = part.type == CZrHbDataTransmit::eContentType_TextPlain;
        const char* type =
            isText ? "Content-Type: text/plain" : "Content-Type: application/octet-stream";
        CString error;
        if (!CZrHbMultipartForm::MultipartAttachFromFile_AsByteBuffer(
                FileNameOf(part.path), part.path.c_str(), name, type, &body, error))
            throw SystemError(TextFromBytes(error.View()));
    }
    body += CZrHbMultipartForm::MultipartEnd2();
    return {std::string("Content-Type: multipart/form-data; boundary=") + kBuilderBoundary,
            Text(body.GetString())};
}

const FormPart* FirstWithNul(const std::vector<FormPart>& parts) {
    const auto part = std::find_if(parts.begin(), parts.end(),
                                   [](const FormPart& each) { return each.HoldsNul(); });
    return part == parts.end() ? nullptr : &*part;
}

// Nothing in the library tests a boundary that it did not make.
void CheckBoundary(const std::string& boundary, const std::vector<FormPart>& parts) {
    if (!IsToken(boundary) || boundary.size() > kLongestBoundary)
        throw UsageError("--boundary: expected 1 to 70 letters, digits and marks such as - or _");
    for (const FormPart& part : parts)
        if (part.content.find(boundary) != std::string::npos)
            throw UsageError("the boundary '" + boundary + "' occurs in '" +
                             TextFromBytes(part.name) + "'; choose another --boundary");
}

Composed ComposeMultipart(const FormOptions& options, const std::vector<FormPart>& parts) {
    const FormPart* const binary = FirstWithNul(parts);
    if (binary && options.boundary.value_or(kBuilderBoundary) != kBuilderBoundary)
        throw UsageError("--file: '" + binary->path +
                         "' contains NUL bytes; leave out --boundary to send it");
    if (options.boundary || binary)
        CheckBoundary(options.boundary.value_or(kBuilderBoundary), parts);
    return binary ? ComposeBytes(options, parts) : ComposeDataSet(options, parts);
}

Composed Compose(const FormOptions& options, const std::vector<FormPart>& parts) {
    if (options.encoding == "multipart") return ComposeMultipart(options, parts);
    if (const FormPart* const binary = FirstWithNul(parts))
        throw UsageError("--file: '" + binary->path +
                         "' contains NUL bytes; only --as multipart can send it");
    return ComposePairs(options, parts);
}

bool IsFile(const FormPart& part) {
    return part.IsFile();
}

} // namespace

std::string ComposeForm(const FormOptions& options, const std::vector<FormPart>& parts) {
    Composed form = Compose(options, parts);
    if (!options.withHeader) return std::move(form.body);
    if (options.encoding == "multipart" && std::none_of(parts.begin(), parts.end(), IsFile))
        PrintNote("The Content-Type line of a form without files names no boundary.");
    return form.header + "\r\n\r\n" + form.body;
}

} // namespace zrhttp
