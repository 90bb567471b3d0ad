// The document object of a page: its source, as far as it has arrived.
#pragma once

#include <memory>

#include <platform/Browser.h>

#include "browser/common/ReplyBody.h"

namespace platform {

// Stays readable when the browser has gone on to another page.
class PageDocument final : public ComObject<IDispatch, IPersistStreamInit> {
public:
    explicit PageDocument(std::shared_ptr<const ReplyBody> body) : m_body(std::move(body)) {}

    // Writes the bytes received, before any decoding of text.
    HRESULT Save(IStream* pStream, BOOL bClearDirty) override;
    // The document has no members of its own.
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    const std::shared_ptr<const ReplyBody> m_body;
};

} // namespace platform
