// What a page has under way on the network beside its documents, and how much it has received.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "browser/chromium/DevToolsValues.h"

namespace platform {

class PageTraffic {
public:
    // The top level shows another document.
    void Reset();
    // Network.requestWillBeSent, dataReceived, loadingFinished or loadingFailed.
    void OnRequest(const Json& params);
    void OnData(const Json& params);
    void OnEnd(const Json& params);
    void DropFrame(const std::string& frame);

    // Whether something is on its way that the load event of a document waits for.
    bool IsBusy() const { return !m_underWay.empty(); }
    // How many of those there have been.
    std::size_t Begun() const { return m_begun; }
    // Of everything, documents and frames included, after decompression.
    std::size_t Bytes() const { return m_bytes; }

private:
    std::map<std::string, std::string> m_underWay; // the frame by the request
    std::size_t m_begun = 0;
    std::size_t m_bytes = 0;
};

} // namespace platform
