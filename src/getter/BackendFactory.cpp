#include "getter/BackendFactory.h"

#include "backends/ZrHbWebBrowserHttpGet.h"

namespace {

class LibraryBackends final : public BackendFactory {
public:
    std::unique_ptr<CZrHbHttpGet> Create(BackendKind kind, DWORD nConnectVersion) override {
        if (kind != BackendKind::inProcess) return nullptr;
        return std::make_unique<CZrHbWebBrowserHttpGet>(nConnectVersion);
    }
};

} // namespace

BackendFactory& BackendFactory::Real() {
    static LibraryBackends factory;
    return factory;
}
