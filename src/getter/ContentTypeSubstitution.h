// Shows replies of one MIME type as plain text: the type's entry in the user's MIME database is
// replaced by that of text/plain, after a backup, until it is restored.
#pragma once

#include <memory>

#include <platform/String.h>

// Copies stand for one substitution: whichever copy restores it ends it for all. Failures of the
// registry leave its keys as they were and are not reported.
class ContentTypeSubstitution {
public:
    // A backup that an earlier substitution of the type has left is kept: it holds the real entry.
    void Substitute(const CString& strContentType);
    // Puts the type's own entry back. The backup stays when that fails.
    void Restore();
    // Leaves the registry as it is.
    void Forget() { m_type.reset(); }

private:
    std::shared_ptr<CString> m_type; // emptied when restored
};
