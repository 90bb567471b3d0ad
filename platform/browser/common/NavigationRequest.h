// What a caller asks a browser to load.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <platform/Browser.h>

#include "browser/common/HeaderBlock.h"
#include "browser/common/PageUrl.h"

namespace platform {

struct NavigationRequest {
    PageUrl target;
    std::u16string givenUrl; // as the caller gave it, user information included: never shown
    LONG flags = 0;
    std::string body; // empty: a GET request
    std::vector<HeaderField> headers;
    std::string headerBlock; // as the caller gave it
};

// Reads and checks the arguments of Navigate2 (each may be null or VT_EMPTY but the URL). Empty,
// with the reason in plain words, when the request cannot be sent exactly as given.
std::optional<NavigationRequest> ParseNavigation(const VARIANT* pUrl, const VARIANT* pFlags,
                                                 const VARIANT* pPostData, const VARIANT* pHeaders,
                                                 std::string& error);

// Hands the request on to another browser, which opens it in its own window.
HRESULT NavigateWith(IWebBrowser2& browser, const NavigationRequest& request);

// The value itself, or the one that a VT_BYREF|VT_VARIANT points to.
const VARIANT* Dereference(const VARIANT* pValue);

} // namespace platform
