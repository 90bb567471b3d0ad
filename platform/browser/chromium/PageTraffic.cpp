#include "browser/chromium/PageTraffic.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace platform {
namespace {

// Scripts' own requests, media and the browser's icon hold up no page.
bool HoldsLoadEvent(const std::string& type) {
    constexpr std::array<std::string_view, 4> types{"Stylesheet", "Image", "Font", "Script"};
    return std::find(types.begin(), types.end(), type) != types.end();
}

} // namespace

void PageTraffic::OnRequest(const Json& params) {
    if (!HoldsLoadEvent(TextOf(params, "type"))) return;
    m_underWay[TextOf(params, "requestId")] = {TextOf(params, "frameId"),
                                               TextOf(params, "loaderId")};
    ++m_begun;
}

void PageTraffic::OnData(const Json& params) {
    m_bytes += static_cast<std::size_t>(std::max(NumberOf(params, "dataLength"), 0));
}

void PageTraffic::OnEnd(const Json& params) {
    m_underWay.erase(TextOf(params, "requestId"));
}

} // namespace platform
