// Raising the events of DWebBrowserEvents2 with their documented arguments.
#pragma once

#include <string>

#include <platform/Browser.h>

#include "browser/common/ConnectionPoint.h"
#include "browser/common/NavigationRequest.h"

namespace platform {

// `source` is the browser or frame that the event is about; URLs are ASCII. On the owner's thread,
// in the dispatch of a message.

// False when a sink has cancelled the navigation.
bool RaiseBeforeNavigate2(ConnectionPoint& sinks, IDispatch* source,
                          const NavigationRequest& request);
void RaiseNavigateComplete2(ConnectionPoint& sinks, IDispatch* source, const std::string& url);
void RaiseDocumentComplete(ConnectionPoint& sinks, IDispatch* source, const std::string& url);
// The window that a sink has made for the page, or null; `isCancelled` when a sink wants none.
CComPtr<IDispatch> RaiseNewWindow2(ConnectionPoint& sinks, bool& isCancelled);
void RaiseOnVisible(ConnectionPoint& sinks, bool isVisible);
void RaiseOnQuit(ConnectionPoint& sinks);

} // namespace platform
