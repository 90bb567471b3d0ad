// One document on its way: from the request to DocumentComplete.
#pragma once

#include <memory>
#include <string>

#include <platform/Unknown.h>

#include "browser/chromium/DocumentSource.h"
#include "browser/common/NavigationRequest.h"

namespace platform {

struct DocumentLoad {
    explicit DocumentLoad(std::string frameId) : frame(std::move(frameId)) {}

    // The browser has named the load, and its request.
    void SetLoader(const std::string& name) {
        loader = name;
        source = std::make_shared<DocumentSource>(name);
    }

    const std::string frame;
    std::string loader; // empty until the browser has named it
    NavigationRequest request;
    std::string url; // where the reply came from; until there is one, what was asked for
    std::shared_ptr<DocumentSource> source;
    CComPtr<IDispatch> document;

    int attempts = 0;               // to have the browser load it
    std::size_t announcedBytes = 0; // by the head; 0 when it does not say

    bool isByClient = false; // else by the page itself
    bool hasHead = false;
    bool hasLoadEvent = false; // of the top level
    bool isLoaded = false;     // the page's own loading has ended
    bool isSuperseded = false; // its frame goes on to another document
    bool isDone = false;       // DocumentComplete raised, or given up
};

using DocumentLoadPtr = std::shared_ptr<DocumentLoad>;

} // namespace platform
