// What the browser's own request for a document is changed into: the client's post data and header
// block, its credentials, and replies shown as text.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "browser/chromium/DevToolsValues.h"
#include "browser/common/NavigationRequest.h"

namespace platform {

class ChromiumPage;

// The field that answers a server's question for them (RFC 7617), in place of the credentials.
void PutCredentialsIntoHeader(NavigationRequest& request);

// On the owner's thread. Holds requests up only while there is something to change: it costs time
// with every document.
class RequestOverride {
public:
    explicit RequestOverride(ChromiumPage& page) : m_page(page) {}

    struct Outcome {
        // The request was ended, for the reason given.
        std::function<void(const std::string& reason)> onRefused;
        // The server wants the credentials that it has not been given: they are to go with the
        // request from the start.
        std::function<void()> onCredentialsWanted;
    };
    // Before the client's navigation.
    void Arm(const NavigationRequest& request, Outcome outcome);
    // The browser calls the client's request by this name.
    void SetLoader(const std::string& loader) { m_loader = loader; }
    // The reply to the client's request has come: its own frames are held up no longer, unless
    // there are replies to be shown as text.
    void Finish();
    // The navigation is over.
    void Disarm();

    // Fetch.requestPaused and Fetch.authRequired.
    void OnPaused(const Json& params);
    void OnAuthRequired(const Json& params);

private:
    void Release(const Json& params);
    void ChangeRequest(const Json& params);
    void ChangeRedirect(const Json& params);
    void ChangeReply(const Json& params);
    void AnswerChallenge(const Json& params, Json answer);
    Json ChangedHeaders(const Json& params, bool isRepeated) const;

    ChromiumPage& m_page;
    Outcome m_outcome;
    NavigationRequest m_request;
    std::string m_loader;
    std::string m_lastUrl;
    std::vector<std::string> m_substitutedTypes;
    bool m_hasRequest = false;
    bool m_areCredentialsGiven = false;
    bool m_isRedirected = false;
    bool m_isEnabled = false;
};

} // namespace platform
