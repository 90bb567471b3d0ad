#include "getter/BackendFactory.h"

#include "backends/ZrHbIE2HttpGet.h"
#include "backends/ZrHbIEHttpGet.h"
#include "backends/ZrHbWebBrowserHttpGet.h"
#include "getter/TrafficSimulation.h"

namespace {

class LibraryBackends final : public BackendFactory {
public:
    std::unique_ptr<CZrHbHttpGet> Create(BackendKind kind, DWORD nConnectVersion) override {
        switch (kind) {
        case BackendKind::controlHosting:
            return std::make_unique<CZrHbIEHttpGet>(nConnectVersion);
        case BackendKind::inProcess:
            return std::make_unique<CZrHbWebBrowserHttpGet>(nConnectVersion);
        case BackendKind::outOfProcess:
            return std::make_unique<CZrHbIE2HttpGet>(nConnectVersion, TrafficSimulation());
        }
        return nullptr;
    }
};

} // namespace

BackendFactory& BackendFactory::Real() {
    static LibraryBackends factory;
    return factory;
}
