#include <algorithm>
#include <map>
#include <memory>

#include <sys/stat.h>

#include <CLI/CLI.hpp>

#include "zrhttp/Commands.h"
#include "zrhttp/Errors.h"
#include "zrhttp/FormBody.h"
#include "zrhttp/FormOptions.h"
#include "zrhttp/FormParts.h"
#include "zrhttp/Results.h"

namespace zrhttp {
namespace {

using Kind = FormEntry::Kind;

class EntryOptions {
public:
    void Declare(CLI::App& command, Kind kind, const std::string& name, const std::string& type,
                 const std::string& description) {
        auto* option = command.add_option(name, m_arguments[kind], description);
        option->type_name(type)->allow_extra_args(false);
        m_kinds[option] = kind;
    }

    // The occurrences of all these options, in the order of the command line.
    std::vector<FormEntry> InOrder(const CLI::App& command) const {
        std::vector<FormEntry> entries;
        std::map<Kind, std::size_t> taken;
        for (const CLI::Option* option : command.parse_order())
            if (const auto kind = m_kinds.find(option); kind != m_kinds.end())
                entries.push_back(
                    {kind->second, m_arguments.at(kind->second).at(taken[kind->second]++)});
        return entries;
    }

private:
    std::map<Kind, std::vector<std::string>> m_arguments;
    std::map<const CLI::Option*, Kind> m_kinds;
};

void DeclareEntries(CLI::App& command, EntryOptions& entries) {
    entries.Declare(command, Kind::Field, "--field", "NAME=VALUE",
                    "A field; may be repeated, as the other two. All come in the order given, and "
                    "a name that is given again replaces the first one in its place");
    entries.Declare(command, Kind::Secret, "--secret", "NAME=@FILE",
                    "A confidential field whose value is a file's text without the line end; @- "
                    "is standard input, of which a terminal shows nothing: a line, then Enter");
    entries.Declare(command, Kind::File, "--file", "NAME=PATH[;TYPE]",
                    "A file; TYPE is text/plain (text) or application/octet-stream (binary), the "
                    "default");
}

void DeclareResult(CLI::App& command, FormOptions& options) {
    command.add_option("--as", options.encoding, "query, urlencoded or multipart")
        ->type_name("ENCODING")
        ->check(CLI::IsMember({"query", "urlencoded", "multipart"}))
        ->required();
    command
        .add_option("--boundary", options.boundary,
                    "The text between the parts of a multipart body; finding one takes a second")
        ->type_name("TEXT");
    command.add_flag("--masked", options.isMasked, "Print [...] for the confidential values");
    command.add_flag("--with-header", options.withHeader,
                     "Print the Content-Type line and an empty line before the body");
    command.add_flag("--utf8", options.isUtf8,
                     "Send names and values in the bytes given instead of code page 1252");
    AddOutputOption(command, options.output);
}

void CheckCombination(const FormOptions& options) {
    if (options.entries.empty())
        throw UsageError("the form is empty: give --field, --secret or --file");
    if (options.boundary && options.encoding != "multipart")
        throw UsageError("--boundary: has a meaning with --as multipart only");
    if (options.withHeader && options.encoding == "query")
        throw UsageError("--with-header: a query has no Content-Type");
}

// A new file with secrets in it belongs to the user alone.
void KeepSecretsPrivate(const FormOptions& options) {
    const bool holdsSecrets =
        !options.isMasked &&
        std::any_of(options.entries.begin(), options.entries.end(),
                    [](const FormEntry& entry) { return entry.kind == Kind::Secret; });
    if (holdsSecrets) umask(077);
}

void RunForm(const FormOptions& options) {
    CheckCombination(options);
    KeepSecretsPrivate(options);
    CheckDestination(options.output);
    HandOutBytes(ComposeForm(options, ReadFormParts(options)), options.output);
}

} // namespace

void AddFormCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("form", "Compose the data of a form");
    const auto options = std::make_shared<FormOptions>();
    const auto entries = std::make_shared<EntryOptions>();
    DeclareEntries(*command, *entries);
    DeclareResult(*command, *options);
    command->callback([command, options, entries, &exitStatus] {
        options->entries = entries->InOrder(*command);
        RunForm(*options);
        exitStatus = kSuccess;
    });
}

} // namespace zrhttp
