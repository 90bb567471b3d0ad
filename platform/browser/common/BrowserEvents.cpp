#include "browser/common/BrowserEvents.h"

#include <array>

namespace platform {
namespace {

// Arguments lie last first; `arguments` borrows all it holds.
template <std::size_t N>
void Raise(ConnectionPoint& sinks, DISPID event, std::array<VARIANT, N>& arguments) {
    DISPPARAMS params;
    params.rgvarg = arguments.data();
    params.cArgs = static_cast<UINT>(arguments.size());
    sinks.Raise(event, params);
}

VARIANT Reference(VARIANT& value) {
    VARIANT reference;
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &value;
    return reference;
}

VARIANT Reference(VARIANT_BOOL& value) {
    VARIANT reference;
    reference.vt = VT_BYREF | VT_BOOL;
    reference.pboolVal = &value;
    return reference;
}

VARIANT Borrow(IDispatch* object) {
    VARIANT value;
    value.vt = VT_DISPATCH;
    value.pdispVal = object;
    return value;
}

void RaiseWithUrl(ConnectionPoint& sinks, DISPID event, IDispatch* source, const std::string& url) {
    if (!sinks.HasSinks()) return;
    COleVariant location{CString(url)};
    std::array<VARIANT, 2> arguments{Reference(location), Borrow(source)};
    Raise(sinks, event, arguments);
}

} // namespace

bool RaiseBeforeNavigate2(ConnectionPoint& sinks, IDispatch* source,
                          const NavigationRequest& request) {
    if (!sinks.HasSinks()) return true;
    COleVariant url{CString(request.target.url)};
    COleVariant flags{request.flags};
    COleVariant frameName;
    COleSafeArray postData;
    if (!request.body.empty())
        postData.CreateOneDim(VT_UI1, static_cast<DWORD>(request.body.size()), request.body.data());
    COleVariant headers{CString(request.headerBlock)};
    VARIANT_BOOL cancel = VARIANT_FALSE;
    std::array<VARIANT, 7> arguments{Reference(cancel),    Reference(headers), Reference(postData),
                                     Reference(frameName), Reference(flags),   Reference(url),
                                     Borrow(source)};
    Raise(sinks, DISPID_BEFORENAVIGATE2, arguments);
    return cancel == VARIANT_FALSE;
}

void RaiseNavigateComplete2(ConnectionPoint& sinks, IDispatch* source, const std::string& url) {
    RaiseWithUrl(sinks, DISPID_NAVIGATECOMPLETE2, source, url);
}

void RaiseDocumentComplete(ConnectionPoint& sinks, IDispatch* source, const std::string& url) {
    RaiseWithUrl(sinks, DISPID_DOCUMENTCOMPLETE, source, url);
}

CComPtr<IDispatch> RaiseNewWindow2(ConnectionPoint& sinks, bool& isCancelled) {
    CComPtr<IDispatch> window;
    VARIANT_BOOL cancel = VARIANT_FALSE;
    std::array<VARIANT, 2> arguments{Reference(cancel), VARIANT{}};
    arguments[1].vt = VT_BYREF | VT_DISPATCH;
    arguments[1].ppdispVal = &window;
    Raise(sinks, DISPID_NEWWINDOW2, arguments);
    isCancelled = cancel != VARIANT_FALSE;
    return window;
}

void RaiseOnVisible(ConnectionPoint& sinks, bool isVisible) {
    std::array<VARIANT, 1> arguments{};
    arguments[0].vt = VT_BOOL;
    arguments[0].boolVal = isVisible ? VARIANT_TRUE : VARIANT_FALSE;
    Raise(sinks, DISPID_ONVISIBLE, arguments);
}

void RaiseOnQuit(ConnectionPoint& sinks) {
    std::array<VARIANT, 0> arguments{};
    Raise(sinks, DISPID_ONQUIT, arguments);
}

} // namespace platform
