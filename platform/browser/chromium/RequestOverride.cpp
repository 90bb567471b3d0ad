#include "browser/chromium/RequestOverride.h"

#include <algorithm>
#include <array>
#include <utility>

#include <platform/CodePage.h>

#include "browser/chromium/Base64.h"
#include "browser/chromium/ChromiumPage.h"
#include "browser/common/PageType.h"
#include "browser/common/PageUrl.h"

namespace platform {
namespace {

constexpr const char* kContentType = "Content-Type";
constexpr const char* kFormType = "application/x-www-form-urlencoded";

Json Documents(const char* pszStage) {
    return {{"resourceType", "Document"}, {"requestStage", pszStage}};
}

bool HasCredentials(const NavigationRequest& request) {
    return !request.target.user.empty() || !request.target.password.empty();
}

// Adds a field to a list of fields; one that is there gets the value behind its own.
void AddField(Json& fields, const std::string& name, const std::string& value) {
    for (Json& field : fields)
        if (EqualsIgnoringCase(field["name"].get<std::string>(), name)) {
            field["value"] = field["value"].get<std::string>() + ", " + value;
            return;
        }
    fields.push_back({{"name", name}, {"value", value}});
}

bool HasField(const Json& fields, const char* pszName) {
    return std::any_of(fields.begin(), fields.end(), [&](const Json& field) {
        return EqualsIgnoringCase(TextOf(field, "name"), pszName);
    });
}

// Fields of a reply that would keep its body from being shown as the text that it is.
bool SaysWhatTheBodyIs(const std::string& name) {
    constexpr std::array<const char*, 7> fields{
        "Content-Type",      "Content-Disposition",    "Content-Encoding", "Content-Length",
        "Transfer-Encoding", "X-Content-Type-Options", "Refresh"};
    return std::any_of(fields.begin(), fields.end(),
                       [&](const char* known) { return EqualsIgnoringCase(name, known); });
}

} // namespace

void PutCredentialsIntoHeader(NavigationRequest& request) {
    const std::string pair =
        std::exchange(request.target.user, {}) + ":" + std::exchange(request.target.password, {});
    request.headers.push_back({"Authorization", "Basic " + EncodeBase64(pair)});
}

void RequestOverride::Arm(const NavigationRequest& request, Outcome outcome) {
    Disarm();
    m_substitutedTypes = SubstitutedTypes();
    m_hasRequest = !request.body.empty() || !request.headers.empty() || HasCredentials(request);
    if (!m_hasRequest && m_substitutedTypes.empty()) return;
    if (m_hasRequest) m_request = request;
    m_outcome = std::move(outcome);
    Json patterns = Json::array();
    if (m_hasRequest) patterns.push_back(Documents("Request"));
    if (!m_substitutedTypes.empty()) patterns.push_back(Documents("Response"));
    m_page.Send("Fetch.enable", {{"patterns", patterns}, {"handleAuthRequests", m_hasRequest}});
    m_isEnabled = true;
}

void RequestOverride::Disarm() {
    Finish();
    m_substitutedTypes.clear();
    if (!m_isEnabled) return;
    m_isEnabled = false;
    m_page.Send("Fetch.disable");
}

void RequestOverride::Finish() {
    m_hasRequest = false;
    m_areCredentialsGiven = false;
    m_request = NavigationRequest();
    m_loader.clear();
    m_lastUrl.clear();
    m_isRedirected = false;
    m_outcome = {};
    if (!m_isEnabled || !m_substitutedTypes.empty()) return;
    m_isEnabled = false;
    m_page.Send("Fetch.disable");
}

void RequestOverride::Release(const Json& params) {
    m_page.Send("Fetch.continueRequest", {{"requestId", TextOf(params, "requestId")}});
}

void RequestOverride::OnPaused(const Json& params) {
    const bool isOwn = m_hasRequest && TextOf(params, "networkId") == m_loader;
    if (FindValue(params, "responseErrorReason"))
        Release(params);
    else if (FindValue(params, "responseStatusCode"))
        ChangeReply(params);
    else if (!isOwn)
        Release(params);
    else if (TextOf(params, "redirectedRequestId").empty())
        ChangeRequest(params);
    else
        ChangeRedirect(params);
}

void RequestOverride::ChangeRequest(const Json& params) {
    m_lastUrl = TextOf(ObjectOf(params, "request"), "url");
    Json change{{"requestId", TextOf(params, "requestId")},
                {"headers", ChangedHeaders(params, false)}};
    if (!m_request.body.empty()) {
        change["method"] = "POST";
        change["postData"] = EncodeBase64(m_request.body);
        m_request.body.assign(1, ' '); // sent; that there was one matters still
    }
    m_page.Send("Fetch.continueRequest", std::move(change));
}

// The client's fields in place of the browser's own of the same names.
Json RequestOverride::ChangedHeaders(const Json& params, bool isRepeated) const {
    Json own = Json::array();
    for (const HeaderField& field : m_request.headers)
        if (!isRepeated || EqualsIgnoringCase(field.name, kContentType))
            AddField(own, field.name, Utf8FromAnsi(field.value));
    if (!m_request.body.empty() && !HasField(own, kContentType))
        AddField(own, kContentType, kFormType);
    Json fields = own;
    for (const auto& [name, value] : ObjectOf(ObjectOf(params, "request"), "headers").items())
        if (value.is_string() && !HasField(own, name.c_str()))
            fields.push_back({{"name", name}, {"value", value}});
    return fields;
}

// A redirect that repeats the data does so without saying what they are; to another origin they
// do not go at all.
void RequestOverride::ChangeRedirect(const Json& params) {
    const Json& request = ObjectOf(params, "request");
    const std::string url = TextOf(request, "url");
    const bool isSameOrigin = OriginOf(url) == OriginOf(m_lastUrl);
    m_lastUrl = url;
    m_isRedirected = true;
    if (TextOf(request, "method") != "POST") return Release(params);
    if (!isSameOrigin) {
        m_page.Send("Fetch.failRequest",
                    {{"requestId", TextOf(params, "requestId")}, {"errorReason", "Aborted"}});
        if (const auto onRefused = m_outcome.onRefused)
            onRefused("the server redirects the post data to another origin");
        return;
    }
    m_page.Send("Fetch.continueRequest", {{"requestId", TextOf(params, "requestId")},
                                          {"headers", ChangedHeaders(params, true)}});
}

// The browser gives them on the connection on which it was asked, and would send post data on it
// twice: those start over, on a new one. Behind a redirect that would repeat what came before it.
void RequestOverride::OnAuthRequired(const Json& params) {
    const Json& challenge = ObjectOf(params, "authChallenge");
    const bool isGiven = m_hasRequest && HasCredentials(m_request) && !m_areCredentialsGiven &&
                         TextOf(challenge, "source") == "Server" &&
                         OriginOf(m_request.target.url) == OriginOf(TextOf(challenge, "origin"));
    if (!isGiven) return AnswerChallenge(params, {{"response", "CancelAuth"}});
    const bool isStartedOver = !m_request.body.empty() && !m_isRedirected &&
                               EqualsIgnoringCase(TextOf(challenge, "scheme"), "basic");
    if (const auto startOver = m_outcome.onCredentialsWanted; isStartedOver && startOver)
        return startOver();
    m_areCredentialsGiven = true;
    AnswerChallenge(params, {{"response", "ProvideCredentials"},
                             {"username", m_request.target.user},
                             {"password", m_request.target.password}});
}

void RequestOverride::AnswerChallenge(const Json& params, Json answer) {
    m_page.Send("Fetch.continueWithAuth", {{"requestId", TextOf(params, "requestId")},
                                           {"authChallengeResponse", std::move(answer)}});
}

// Only a reply with a body of our own changes its type.
void RequestOverride::ChangeReply(const Json& params) {
    Json headers = Json::array();
    std::string type;
    for (const Json& field : params.value("responseHeaders", Json::array())) {
        const std::string name = TextOf(field, "name");
        if (EqualsIgnoringCase(name, kContentType))
            type = WithoutParameters(TextOf(field, "value"));
        if (!SaysWhatTheBodyIs(name)) headers.push_back(field);
    }
    const int status = NumberOf(params, "responseStatusCode");
    const bool isSubstituted = std::find(m_substitutedTypes.begin(), m_substitutedTypes.end(),
                                         type) != m_substitutedTypes.end();
    if (!isSubstituted || (status >= 300 && status < 400)) return Release(params);
    headers.push_back({{"name", kContentType}, {"value", "text/plain"}});
    // Without it the browser guesses, and takes bytes for a download.
    headers.push_back({{"name", "X-Content-Type-Options"}, {"value", "nosniff"}});
    const std::string id = TextOf(params, "requestId");
    m_page.Send("Fetch.getResponseBody", {{"requestId", id}},
                [this, id, status, headers](DevToolsReply& reply) {
                    const std::string body = TextOf(reply.result, "body");
                    const bool isEncoded = IsTrue(reply.result, "base64Encoded");
                    m_page.Send("Fetch.fulfillRequest",
                                {{"requestId", id},
                                 {"responseCode", status},
                                 {"responseHeaders", headers},
                                 {"body", isEncoded ? body : EncodeBase64(body)}});
                });
}

} // namespace platform
