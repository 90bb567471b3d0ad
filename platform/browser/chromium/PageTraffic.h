// What a page has under way on the network beside its documents, and how much it has received.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "browser/chromium/DevToolsValues.h"

namespace platform {

class PageTraffic {
public:
    struct Request {
        std::string frame;
        std::string loader; // of the document that asks
    };

    // The top level goes on to another document.
    void ForgetRequests() { m_underWay.clear(); }
    // The top level shows another document.
    void ForgetBytes() { m_bytes = 0; }
    // Network.requestWillBeSent, dataReceived, loadingFinished or loadingFailed.
    void OnRequest(const Json& params);
    void OnData(const Json& params);
    void OnEnd(const Json& params);

    // What is on its way, by its id, that the load event of a document waits for.
    const std::map<std::string, Request>& UnderWay() const { return m_underWay; }
    // How many of those there have been.
    std::size_t Begun() const { return m_begun; }
    // Of everything, documents and frames included, after decompression.
    std::size_t Bytes() const { return m_bytes; }

private:
    std::map<std::string, Request> m_underWay;
    std::size_t m_begun = 0;
    std::size_t m_bytes = 0;
};

} // namespace platform
