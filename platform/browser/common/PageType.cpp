#include "browser/common/PageType.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include <platform/Registry.h>

#include "browser/common/HeaderBlock.h"

namespace platform {
namespace {

constexpr std::array<std::string_view, 15> kPageTypes{"text/html",        "application/xhtml+xml",
                                                      "text/plain",       "text/xml",
                                                      "application/xml",  "text/css",
                                                      "text/javascript",  "application/javascript",
                                                      "application/json", "image/png",
                                                      "image/jpeg",       "image/gif",
                                                      "image/webp",       "image/bmp",
                                                      "image/svg+xml"};

bool IsMimeType(std::string_view type) {
    const std::size_t slash = type.find('/');
    return slash != std::string_view::npos && IsToken(type.substr(0, slash)) &&
           IsToken(type.substr(slash + 1));
}

constexpr const char* kTypesPath = "MIME\\Database\\Content Type";

std::optional<std::string> ExtensionOf(const std::string& type) {
    RegistryValue value;
    const CString key = CString(kTypesPath) + "\\" + CString(type);
    if (Current<RegistryStore>().GetValue(HKEY_CLASSES_ROOT, key, "Extension", value) !=
        ERROR_SUCCESS)
        return std::nullopt;
    return value.data;
}

bool IsSubstitutedByText(const std::string& type) {
    if (!IsMimeType(type)) return false;
    const auto extension = ExtensionOf(type);
    return extension && extension == ExtensionOf("text/plain");
}

} // namespace

std::string ReasonNotShown(const ReplyType& reply) {
    if (reply.status == 204 || reply.status == 205)
        return "the server has sent no page (status " + std::to_string(reply.status) + ")";
    if (IsPageType(reply.type))
        return reply.isAttachment ? "an attachment is not shown as a page" : "";
    if (IsSubstitutedByText(reply.type)) return {};
    return (IsMimeType(reply.type) ? reply.type : "an unknown type") + " is not shown as a page";
}

std::string WithoutParameters(std::string_view value) {
    value = value.substr(0, value.find(';'));
    while (value.ends_with(' ') || value.ends_with('\t'))
        value.remove_suffix(1);
    std::string type(value);
    std::transform(type.begin(), type.end(), type.begin(), [](char ch) {
        return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
    });
    return type;
}

std::vector<std::string> SubstitutedTypes() {
    std::vector<CString> names;
    Current<RegistryStore>().ChildKeys(HKEY_CLASSES_ROOT, kTypesPath, names);
    std::vector<std::string> types;
    for (const CString& name : names) {
        std::string type = WithoutParameters(name.GetString());
        if (!IsPageType(type) && IsSubstitutedByText(type)) types.push_back(std::move(type));
    }
    return types;
}

bool IsPageType(const std::string& type) {
    return type.empty() || type.ends_with("+xml") || type.ends_with("+json") ||
           std::find(kPageTypes.begin(), kPageTypes.end(), type) != kPageTypes.end();
}

bool IsHtmlType(const std::string& type) {
    return type.empty() || type == "text/html" || type == "application/xhtml+xml";
}

} // namespace platform
