#include <memory>
#include <optional>

#include <CLI/CLI.hpp>

#include "zrhttp/Commands.h"
#include "zrhttp/Encodings.h"
#include "zrhttp/Errors.h"
#include "zrhttp/InputFile.h"
#include "zrhttp/PageText.h"
#include "zrhttp/Results.h"

namespace zrhttp {
namespace {

struct TextOptions {
    std::string file = "-";
    std::optional<std::string> charset;
    std::optional<std::string> output;
    bool isCompact = false;
};

std::string CheckedEncoding(const std::string& label) {
    const auto encoding = EncodingFromLabel(label);
    if (!encoding || !IsKnownEncoding(*encoding))
        throw UsageError("--charset: unknown character set '" + label +
                         "'; expected a name such as utf-8, iso-8859-1 or windows-1252");
    return *encoding;
}

void RunText(const TextOptions& options) {
    const std::string encoding = options.charset ? CheckedEncoding(*options.charset) : "";
    CheckDestination(options.output);
    HandOutText(PageAsText(ReadInput(options.file), encoding, options.isCompact), options.output);
}

} // namespace

void AddTextCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("text", "Reduce an HTML page to its readable text");
    const auto options = std::make_shared<TextOptions>();
    command->add_option("FILE", options->file, "The page; - is standard input")
        ->capture_default_str();
    command->add_flag("--compact", options->isCompact, "Leave out empty lines");
    command
        ->add_option("--charset", options->charset,
                     "The page's character set; default: what its byte-order mark or its meta "
                     "element says, then UTF-8 if it is that, else windows-1252")
        ->type_name("NAME");
    AddOutputOption(*command, options->output);
    command->footer(
        "The text is in the locale's encoding (LC_ALL, LC_CTYPE or LANG; UTF-8 in the C "
        "locale), to a terminal, a pipe or a file alike. Characters that it lacks "
        "become ?.");
    command->callback([options, &exitStatus] {
        RunText(*options);
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
