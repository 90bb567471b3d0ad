// Replies that are cut, malformed or whole, whatever reads them: what the server does, what must
// come.
#pragma once

#include <string>
#include <vector>

#include <platform/Types.h>

#include "support/RawServer.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace test_support {

struct CutReply {
    enum class Over { http, https };

    const char* name;
    Over over;
    ConnectionEnd end;
    std::string bytes;
    const char* reason;  // in the builtin engine's and the downloads' words; empty: it is whole
    DWORD error;         // of the internet function that fails
    std::string content; // what a download has of it: all, or what came before
    bool isDownloaded;   // as its length has it
};

const std::vector<CutReply>& CutReplies();

// Serves them all; over HTTPS by TLS 1.2 and 1.3, with a certificate that is trusted meanwhile.
class CutReplyServers {
public:
    CutReplyServers();

    // Calls `look` with each reply and its URL.
    template <class TLook>
    void ForEach(const TLook& look) {
        for (const CutReply& one : CutReplies()) {
            if (one.over == CutReply::Over::http) {
                look(one, Serve(m_plain, one));
                continue;
            }
            look(one, Serve(m_tls12, one));
            look(one, Serve(m_tls13, one));
        }
    }

private:
    static std::string Serve(RawServer& server, const CutReply& reply) {
        server.Set("/", reply.bytes, reply.end);
        return server.Url("/");
    }

    TemporaryHome m_home;
    Certificate m_authority = Certificate::Authority();
    ScopedVariable m_trust;
    RawServer m_plain;
    RawServer m_tls12{m_authority.Issue("127.0.0.1"), true};
    RawServer m_tls13{m_authority.Issue("127.0.0.1")};
};

} // namespace test_support
