// Which replies are pages.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// What a reply's head says about its content.
struct ReplyType {
    int status = 0;   // HTTP; 0 for what is none
    std::string type; // "text/html", lower case, without parameters; empty when not given
    bool isAttachment = false;
};

// Empty when the reply is to be shown, else the reason in plain words. Asks the MIME database for
// types that are no page's: one that has the plain text's entry is shown as text.
std::string ReasonNotShown(const ReplyType& reply);

// The types that the MIME database gives the plain text's entry: shown as text.
std::vector<std::string> SubstitutedTypes();

// The media type of a header field's value: lower case, without parameters.
std::string WithoutParameters(std::string_view value);

// Types that browsers show as pages of their own; a missing type counts as one.
bool IsPageType(const std::string& type);

// Documents that may hold frames and refreshes.
bool IsHtmlType(const std::string& type);

} // namespace platform
