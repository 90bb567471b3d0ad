#include "zrhttp/FetchReport.h"

#include <ZrHbResultCodes.h>
#include <nlohmann/json.hpp>
#include <platform/UserPaths.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/HttpStatus.h"
#include "zrhttp/OutputFile.h"
#include "zrhttp/PageText.h"
#include "zrhttp/Results.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

using Json = nlohmann::ordered_json;

std::string ReadableText(std::string_view page) {
    return PageAsText(page, "", false);
}

Json PagesAsJson(const FetchOptions& options, const std::vector<CollectedPage>& pages) {
    Json list = Json::array();
    for (const CollectedPage& page : pages) {
        Json entry{{"url", page.url}, {"length", page.source.size()}};
        if (options.text)
            entry["text"] = ReadableText(page.source);
        else
            entry["source"] = TextFromBytes(page.source);
        list.push_back(std::move(entry));
    }
    return list;
}

void PrintJson(const FetchOptions& options, const FetchResult& result) {
    Json json{{"code", result.code},
              {"http_status", nullptr},
              {"error", result.error},
              {"url", result.url},
              {"length", result.length},
              {"longest_idle_seconds", result.longestIdle},
              {"elapsed_ms", result.elapsed.count()},
              {"status", result.status}};
    if (result.httpStatus) json["http_status"] = *result.httpStatus;
    if (options.collect) json["pages"] = PagesAsJson(options, result.pages);
    // Escaped to ASCII: control characters beyond C0 must not reach a terminal either.
    WriteOutput(json.dump(-1, ' ', true) + "\n");
}

void HandOutPage(const FetchOptions& options, std::string_view page) {
    if (options.text)
        HandOutText(ReadableText(page), options.output);
    else
        HandOutBytes(page, options.output);
}

void PrintPages(const FetchOptions& options, const std::vector<CollectedPage>& pages) {
    for (const CollectedPage& page : pages) {
        PrintNote("==> " + page.url + " <==");
        HandOutPage(options, page.source);
    }
}

void PrintFailure(const FetchResult& result) {
    std::string text = std::to_string(result.code);
    for (const std::string& part : {result.error, result.status})
        if (!part.empty()) text += ": " + part;
    PrintError(text);
    if (result.code == ZRHB_CONNECT_FAILED) PrintNote("zrhttp doctor tells what is missing.");
}

void WriteResult(const FetchOptions& options, const FetchResult& result) {
    if (options.collect)
        PrintPages(options, result.pages);
    else if (options.save)
        WriteSaveFile(*options.save, result.page);
    else
        HandOutPage(options, result.page);
}

bool IsUnwantedErrorPage(const FetchOptions& options, const FetchResult& result) {
    return options.fail && result.httpStatus && *result.httpStatus >= kFirstErrorStatus;
}

} // namespace

void WriteSaveFile(const std::string& path, std::optional<std::string_view> text) {
    constexpr int kSaveFailed = static_cast<int>(ZRHB_SAVE_FAILED);
    const std::string code = std::to_string(kSaveFailed) + ": ";
    CString local;
    if (path.empty() || !platform::LocalFileName(path.c_str(), local))
        throw ToolError(kSaveFailed, code + "cannot write '" + path + "'");
    try {
        OutputFile file(local.GetString());
        if (!text) return;
        file.Write(*text);
        file.Commit();
    } catch (const SystemError& error) {
        throw ToolError(kSaveFailed, code + error.what());
    }
}

int ReportFetch(const FetchOptions& options, const FetchResult& result) {
    const bool isUnwanted = IsUnwantedErrorPage(options, result);
    const bool isLoaded = result.code == 0 && !isUnwanted;
    if (isUnwanted)
        PrintError(HttpStatusText(*result.httpStatus));
    else if (!isLoaded)
        PrintFailure(result);
    // With --json, the page itself goes to a file only.
    if (isLoaded && (!options.json || options.output || options.save)) WriteResult(options, result);
    if (options.json) PrintJson(options, result);
    if (isLoaded) return kSuccess;
    const bool isResultCode = !isUnwanted && result.code >= 20 && result.code <= 29;
    return isResultCode ? static_cast<int>(result.code) : kFailure;
}

} // namespace zrhttp
