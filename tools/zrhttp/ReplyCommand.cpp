#include <memory>
#include <optional>

#include <CLI/CLI.hpp>
#include <ZrHbBrightrelayReply.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Commands.h"
#include "zrhttp/Errors.h"
#include "zrhttp/InputFile.h"
#include "zrhttp/Results.h"

namespace zrhttp {
namespace {

struct ReplyOptions {
    std::string file = "-";
    std::optional<std::string> value;
    bool isQuoted = false;
    bool wantsStatus = false;
    std::optional<std::string> output;
};

void Print(const CString& result, const ReplyOptions& options) {
    HandOutBytes(std::string(result.View()) + "\n", options.output);
}

// The parser has one answer for a value that is not there and one that is empty.
bool HasEmptyValue(const CString& comment, CString name, bool isQuoted) {
    name.TrimRight("=");
    return comment.Find(name + (isQuoted ? "=\"\" " : "= ")) >= 0;
}

CString ValueIn(CZrHbBrightrelayReply& reply, const std::string& argument, bool isQuoted) {
    const CString name = AnsiFromArgument("--value", argument);
    const CString value = reply.GetValue(name, isQuoted ? CZrHbBrightrelayReply::eTagType_Quoted
                                                        : CZrHbBrightrelayReply::eTagType_Plain);
    if (value.IsEmpty() && !HasEmptyValue(reply.GetBrightrelayReply(), name, isQuoted))
        throw ToolError(kFailure, "the reply holds no " +
                                      std::string(isQuoted ? "quoted" : "plain") + " value '" +
                                      argument + "' with a blank behind it");
    return value;
}

int RunReply(const ReplyOptions& options) {
    if (options.isQuoted && !options.value) throw UsageError("--quoted: needs --value");
    if (options.value && options.value->empty()) throw UsageError("--value: is empty");
    CheckDestination(options.output);
    CZrHbBrightrelayReply reply;
    if (!reply.Init(CString(ReadInput(options.file)))) {
        CString text;
        reply.GetLastParserError(text);
        throw ToolError(kFailure, TextFromBytes(text.View()));
    }
    if (options.value) {
        Print(ValueIn(reply, *options.value, options.isQuoted), options);
    } else if (options.wantsStatus) {
        Print(ValueIn(reply, "STATUS", false), options);
        return reply.IsStatusOkay() ? kSuccess : kFailure;
    } else {
        Print(reply.GetBrightrelayReply(), options);
    }
    return kSuccess;
}

} // namespace

void AddReplyCommand(CLI::App& application, int& exitStatus) {
    auto* command =
        application.add_subcommand("reply", "Print the values that a server has hidden in a page");
    const auto options = std::make_shared<ReplyOptions>();
    command->add_option("FILE", options->file, "The page; - is standard input")
        ->capture_default_str();
    auto* value =
        command->add_option("--value", options->value, "Print the value of this name only");
    value->type_name("NAME");
    command->add_flag("--quoted", options->isQuoted, "The value stands in double quotes");
    command
        ->add_flag("--status", options->wantsStatus,
                   "Print the value of STATUS; the exit status is 0 when it is 0, else 1")
        ->excludes(value);
    AddOutputOption(*command, options->output);
    command->footer("Without --value and --status: the whole comment. The exit status is 1 when "
                    "the page holds no such comment or the comment no such value.");
    command->callback([options, &exitStatus] { exitStatus = RunReply(*options); });
}

} // namespace zrhttp
