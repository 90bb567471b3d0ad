#include "zrhttp/PageFetch.h"

#include <optional>

#include <ZrHbUHttpGet.h>
#include <platform/CodePage.h>
#include <platform/Diagnostics.h>
#include <platform/File.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Interrupt.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

class PageFetch {
public:
    PageFetch(const FetchOptions& options, const FetchRequest& request)
        : m_options(options), m_request(request) {}

    FetchResult Run() {
        const auto begin = std::chrono::steady_clock::now();
        m_result.code = Load();
        m_result.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - begin);
        m_result.longestIdle = m_getter.GetLastMaxIdleTimeEncountered().GetTotalSeconds();
        AskBrowser();
        m_collector.reset();
        m_getter.Close();
        m_getter.Disconnect(0);
        m_result.error = m_result.code == ZRHB_STOPPED ? "Stopped by an interrupt."
                                                       : TextFromBytes(ErrorText().View());
        return std::move(m_result);
    }

private:
    DWORD Load() {
        DWORD code = m_getter.ConnectV3(nullptr, m_error, CZrHbUHttpGet::eVisible,
                                        CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "zrhttp",
                                        CString(), 0, 1);
        if (code != ZRHB_OK) return code;
        if (m_options.collect) m_collector.emplace(m_getter.Get_IWebBrowser2_ptr());
        if (m_options.visible) m_getter.PutVisible(TRUE);
        if (m_options.contentType) m_getter.DoNextOpenForSpecialContentType(m_request.contentType);
        code = Open();
        if (code != ZRHB_OK) return code;
        return m_options.save ? ReadAndSave() : Read();
    }

    DWORD Open() {
        // Kept open, the browser goes on delivering events after the page has been read.
        const BOOL keepOpen = m_options.collect ? TRUE : FALSE;
        if (!m_request.body) return m_getter.Open(m_request.url, m_error, keepOpen);
        std::string body = *m_request.body;
        return m_getter.Open(m_request.url, m_error, body.data(), static_cast<DWORD>(body.size()),
                             m_request.headers, keepOpen);
    }

    DWORD Read() {
        CByteBuffer page(65536, 65536);
        CString url;
        const DWORD code =
            m_getter.BusyRead2(page, m_error, url, &m_request.titles, m_options.timeout,
                               m_options.largeData, m_options.idleTimeout, OnWaiting, this);
        m_result.url = TextFromBytes(url.View());
        if (code != ZRHB_OK) return code;
        m_result.page.assign(page.GetData(), page.GetData() + page.GetSize());
        m_result.length = m_result.page.size();
        return code;
    }

    DWORD ReadAndSave() {
        const DWORD code =
            m_getter.BusyReadSave(CString(m_options.save->c_str()), m_error, m_options.timeout,
                                  m_options.largeData, OnWaiting, this);
        CFile saved;
        if (code == ZRHB_OK && saved.Open(m_options.save->c_str(), CFile::modeRead))
            m_result.length = saved.GetLength();
        return code;
    }

    // The getter names the URL as it was given; a password in it is not for a terminal or a file.
    CString ErrorText() const {
        CString text = m_error;
        if (m_request.url.Find('@') >= 0)
            text.Replace(m_request.url, platform::UrlForLog(m_request.url.View()));
        return text;
    }

    // What only the browser knows, before it is let go.
    void AskBrowser() {
        CZrHbUHttpGet::HandleWinMessageQueue();
        if (m_collector) m_result.pages = m_collector->TakePages();
        IWebBrowser2* browser = m_getter.Get_IWebBrowser2_ptr();
        if (!browser) return;
        CComBSTR status;
        if (SUCCEEDED(browser->get_StatusText(&status)))
            m_result.status = platform::Utf8FromWide(status.View());
        CComBSTR location;
        if (m_result.url.empty() && SUCCEEDED(browser->get_LocationURL(&location)))
            m_result.url = platform::Utf8FromWide(location.View());
    }

    static int OnWaiting(void* context, unsigned long length) {
        static_cast<PageFetch*>(context)->m_progress.Update(length);
        return Interrupt::IsRequested() ? 1 : 0;
    }

    const FetchOptions& m_options;
    const FetchRequest& m_request;
    const Interrupt m_interrupt;
    Progress m_progress;
    CZrHbUHttpGet m_getter{eAppGroup_2};
    std::optional<PageCollector> m_collector;
    CString m_error;
    FetchResult m_result;
};

} // namespace

FetchResult FetchPage(const FetchOptions& options, const FetchRequest& request) {
    return PageFetch(options, request).Run();
}

} // namespace zrhttp
