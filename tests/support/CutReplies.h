// Replies that are cut, malformed or whole: what the server does, what must come.
#pragma once

#include <string>
#include <vector>

#include "support/RawServer.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace test_support {

struct CutReply {
    enum class By { http, httpReset, tls, tlsCut }; // the connection, and its end

    const char* name;
    By by;
    std::string bytes;
    const char* reason = ""; // in the builtin engine's and the downloads' words; empty: it is whole
    std::string content = {}; // what a download has of it: all, or what came before
};

const std::vector<CutReply>& CutReplies();

// Serves them all; TLS in its versions 1.2 and 1.3, with a certificate that is trusted meanwhile.
class CutReplyServers {
public:
    CutReplyServers() { m_home.WriteFile("trusted.pem", m_authority.Pem()); }

    // Calls `look` with each reply and its URL.
    template <class TLook>
    void ForEach(const TLook& look) {
        for (const CutReply& one : CutReplies()) {
            const bool isSecure = one.by >= CutReply::By::tls;
            look(one, Serve(isSecure ? m_tls12 : m_plain, one));
            if (isSecure) look(one, Serve(m_tls13, one));
        }
    }

private:
    static std::string Serve(RawServer& server, const CutReply& reply);

    TemporaryHome m_home;
    Certificate m_authority = Certificate::Authority();
    ScopedVariable m_trust{"ZRHTTP_CA_FILE", m_home.Path("trusted.pem").c_str()};
    RawServer m_plain;
    RawServer m_tls12{m_authority.Issue({"IP:127.0.0.1"}), true};
    RawServer m_tls13{m_authority.Issue({"IP:127.0.0.1"})};
};

} // namespace test_support
