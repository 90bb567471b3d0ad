#include "zrhttp/FormParts.h"

#include <filesystem>
#include <system_error>
#include <unordered_map>
#include <utility>

#include <platform/UserPaths.h>
#include <unistd.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/HttpGrammar.h"
#include "zrhttp/InputFile.h"
#include "zrhttp/Terminal.h"
#include "zrhttp/TypedSecret.h"

namespace zrhttp {
namespace {

using Kind = FormEntry::Kind;

const char* OptionOf(Kind kind) {
    switch (kind) {
    case Kind::Field:
        return "--field";
    case Kind::Secret:
        return "--secret";
    case Kind::File:
        return "--file";
    }
    return "";
}

const char* FormOf(Kind kind) {
    switch (kind) {
    case Kind::Field:
        return "NAME=VALUE";
    case Kind::Secret:
        return "NAME=@FILE (or NAME=@- for standard input): a secret on a command line can be "
               "seen by others";
    case Kind::File:
        return "NAME=PATH or NAME=PATH;TYPE";
    }
    return "";
}

class PartReader {
public:
    explicit PartReader(const FormOptions& options) : m_options(options) {}

    FormPart Read(const FormEntry& entry) {
        const auto [name, value] = Split(entry);
        FormPart part;
        part.name = Sent(entry.kind, name, name);
        CheckName(entry.kind, name);
        switch (entry.kind) {
        case Kind::Field:
            part.content = Sent(entry.kind, name, value);
            break;
        case Kind::Secret:
            ReadSecret(part, name, value.substr(1));
            break;
        case Kind::File:
            ReadFile(part, value);
            break;
        }
        return part;
    }

private:
    // Neither here nor below does a message hold a value.
    static std::pair<std::string, std::string> Split(const FormEntry& entry) {
        const auto separator = entry.argument.find('=');
        const bool isPair = separator != std::string::npos && separator > 0;
        const std::string value = isPair ? entry.argument.substr(separator + 1) : "";
        const bool isSecretInFile = value.size() > 1 && value.front() == '@';
        if (!isPair || (entry.kind == Kind::Secret && !isSecretInFile) ||
            (entry.kind == Kind::File && value.empty()))
            throw UsageError(std::string(OptionOf(entry.kind)) + ": expected " +
                             FormOf(entry.kind));
        return {entry.argument.substr(0, separator), value};
    }

    std::string Sent(Kind kind, const std::string& name, const std::string& text) const {
        if (m_options.isUtf8) return text;
        const std::string argument = std::string(OptionOf(kind)) + " '" + name + "'";
        return std::string(AnsiFromArgument(argument, text).View());
    }

    // The library writes names as they are.
    void CheckName(Kind kind, const std::string& name) const {
        const bool isMultipart = m_options.encoding == "multipart";
        if (!HasControls(name) && name.find_first_of(isMultipart ? "\"" : "&# ") == name.npos)
            return;
        throw UsageError(std::string(OptionOf(kind)) + ": the name '" + name +
                         "' contains characters that would end it; names are not encoded" +
                         (isMultipart ? "" : ", give it percent-encoded"));
    }

    void ReadSecret(FormPart& part, const std::string& name, const std::string& path) {
        if (path == "-" && std::exchange(m_hasReadInput, true))
            throw UsageError("--secret: standard input can be read once only");
        const bool isTyped = path == "-" && IsTerminal(STDIN_FILENO);
        std::string value = isTyped ? TypedSecret(name) : ReadInput(path);
        const std::size_t lineEnd = value.ends_with("\r\n") ? 2 : value.ends_with('\n') ? 1 : 0;
        value.resize(value.size() - lineEnd);
        if (value.empty()) throw UsageError("--secret: '" + path + "' is empty");
        if (value.find('\0') != value.npos)
            throw UsageError("--secret: '" + path + "' contains NUL bytes");
        part.content = Sent(Kind::Secret, name, value);
        part.isSecret = true;
    }

    static void ReadFile(FormPart& part, const std::string& value) {
        const auto separator = value.rfind(';');
        part.path = value.substr(0, separator);
        if (separator != value.npos) part.type = TypeOf(value.substr(separator + 1));
        CheckFileName(part.path);
        CString local;
        if (!platform::LocalFileName(part.path.c_str(), local))
            throw UsageError("--file: cannot read '" + part.path + "'");
        // It is read again when the form is composed.
        std::error_code unknown;
        if (is_other(std::filesystem::status(local.GetString(), unknown)))
            throw UsageError("--file: '" + part.path +
                             "' is no regular file; copy its content to one first");
        part.content = ReadInput(local.GetString());
        if (part.content.empty())
            throw UsageError("--file: '" + part.path + "' is empty; an empty file is not sent");
    }

    static CZrHbDataTransmit::EZrHbContentType TypeOf(const std::string& type) {
        if (type == "text/plain" || type == "text")
            return CZrHbDataTransmit::eContentType_TextPlain;
        if (type == "application/octet-stream" || type == "binary")
            return CZrHbDataTransmit::eContentType_OctetStream;
        throw UsageError("--file: unknown type '" + type +
                         "'; expected text/plain (text) or application/octet-stream (binary)");
    }

    static void CheckFileName(const std::string& path) {
        if (path.empty() || HasControls(path) || path.find('"') != path.npos)
            throw UsageError("--file: '" + path + "' cannot be sent as a file name; rename it");
    }

    const FormOptions& m_options;
    bool m_hasReadInput = false;
};

} // namespace

std::vector<FormPart> ReadFormParts(const FormOptions& options) {
    PartReader reader(options);
    std::vector<FormPart> parts;
    std::unordered_map<std::string, std::size_t> places;
    for (const FormEntry& entry : options.entries) {
        FormPart part = reader.Read(entry);
        const auto [place, isNew] = places.try_emplace(part.name, parts.size());
        if (isNew) {
            parts.push_back(std::move(part));
            continue;
        }
        PrintNote("The name '" + TextFromBytes(part.name) +
                  "' is given again: its last value counts.");
        parts[place->second] = std::move(part);
    }
    return parts;
}

} // namespace zrhttp
