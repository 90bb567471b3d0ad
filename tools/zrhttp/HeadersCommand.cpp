#include <memory>
#include <optional>

#include <CLI/CLI.hpp>
#include <ZrHbHttpHeaders.h>

#include "zrhttp/Commands.h"
#include "zrhttp/Errors.h"
#include "zrhttp/HttpGrammar.h"
#include "zrhttp/Results.h"

namespace zrhttp {
namespace {

struct HeadersOptions {
    std::vector<std::string> lines;
    std::vector<std::string> order;
    bool keepsExisting = false;
    std::optional<std::string> output;
};

CStringArray CheckedOrder(const std::vector<std::string>& names) {
    CStringArray order;
    for (const std::string& name : names) {
        if (!IsToken(name))
            throw UsageError("--order: expected the name of a header, without its value");
        order.Add(CString(name.c_str()));
    }
    return order;
}

void RunHeaders(const HeadersOptions& options) {
    CheckDestination(options.output);
    CZrHbHttpHeaders headers;
    headers.SetHeaderOrder(CheckedOrder(options.order));
    const auto handling = options.keepsExisting ? CZrHbHttpHeaders::eAddHandling_KeepExisting
                                                : CZrHbHttpHeaders::eAddHandling_Replace;
    for (std::size_t index = 0; index < options.lines.size(); ++index) {
        const CString line = CheckedHeaderLine("--add", options.lines, index);
        if (!headers.AddHeaders(line, handling))
            throw UsageError("--add: '" +
                             std::string(line.View().substr(0, line.View().find(':'))) +
                             "': has no value");
    }
    HandOutBytes(headers.GetHeaders().View(), options.output);
}

} // namespace

void AddHeadersCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("headers", "Compose a block of request headers");
    const auto options = std::make_shared<HeadersOptions>();
    command
        ->add_option("--add", options->lines,
                     "A header line \"Name: value\"; may be repeated. A name that is there already "
                     "gets the new value in its old place; upper and lower case differ")
        ->allow_extra_args(false);
    command
        ->add_option("--order", options->order,
                     "Print the header of this name first; may be repeated, in that order")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command->add_flag("--keep-existing", options->keepsExisting,
                      "A name that is there already keeps its first value");
    AddOutputOption(*command, options->output);
    command->callback([options, &exitStatus] {
        RunHeaders(*options);
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
