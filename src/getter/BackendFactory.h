// Makes the browser back-end that a connect has chosen.
#pragma once

#include <memory>

#include <platform/Services.h>

#include "backends/ZrHbHttpGet.h"

enum class BackendKind {
    controlHosting, // the control in a hidden framework window
    outOfProcess,   // a browser application of its own
    inProcess,      // the control in this process
};

class BackendFactory {
public:
    virtual ~BackendFactory() = default;
    static BackendFactory& Real();
    // Empty when this build has no such back-end. May throw.
    virtual std::unique_ptr<CZrHbHttpGet> Create(BackendKind kind, DWORD nConnectVersion) = 0;
};
