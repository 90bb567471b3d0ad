#include <memory>
#include <optional>

#include <CLI/CLI.hpp>
#include <ZrHbHtmlTools.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Commands.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/InputFile.h"
#include "zrhttp/Results.h"

namespace zrhttp {
namespace {

using Conversion = CString (*)(const CString&);
using ArgumentReader = CString (*)(const std::string&);

CString AnsiArgument(const std::string& argument) {
    return AnsiFromArgument("TEXT", argument);
}

CString ExactArgument(const std::string& argument) {
    return CString(argument.c_str());
}

struct TextSource {
    std::optional<std::string> argument;
    std::optional<std::string> output;
};

// Results of an argument are for a person and end with a line end, those of standard input are
// exactly as long as the conversion makes them.
void RunConversion(Conversion convert, ArgumentReader read, const TextSource& source) {
    CheckDestination(source.output);
    const CString text = source.argument ? read(*source.argument) : CString(ReadInput("-"));
    const CString result = convert(text);
    HandOutBytes(source.argument ? (result + "\n").View() : result.View(), source.output);
}

void AddConversion(CLI::App& application, int& exitStatus, const std::string& name,
                   const std::string& description, Conversion convert, ArgumentReader read) {
    auto* command = application.add_subcommand(name, description);
    const auto source = std::make_shared<TextSource>();
    command->add_option("TEXT", source->argument,
                        "The text (-- before one that begins with -); default: the bytes of "
                        "standard input");
    AddOutputOption(*command, source->output);
    command->callback([source, convert, read, &exitStatus] {
        RunConversion(convert, read, *source);
        exitStatus = kSuccess;
    });
}

} // namespace

void AddEncodingCommands(CLI::App& application, int& exitStatus) {
    AddConversion(application, exitStatus, "encode",
                  "Encode a form value, in code page 1252, for a URL or a POST request",
                  CZrHbHtmlTools::URLEncodeString, AnsiArgument);
    AddConversion(application, exitStatus, "to-utf8",
                  "Convert text from 8-bit characters (ISO 8859-1) to UTF-8",
                  CZrHbHtmlTools::AnsiToUTF8, AnsiArgument);
    AddConversion(application, exitStatus, "from-utf8",
                  "Convert text from UTF-8 to code page 1252; characters that it lacks become ?",
                  CZrHbHtmlTools::UTF8ToAnsi, ExactArgument);
}

} // namespace zrhttp
