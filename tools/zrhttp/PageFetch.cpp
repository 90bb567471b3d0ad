#include "zrhttp/PageFetch.h"

#include <cstdlib>
#include <optional>

#include <ZrHbUHttpGet.h>
#include <platform/CodePage.h>
#include <platform/Secrets.h>
#include <platform/Window.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/CreatedControl.h"
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
        m_hidden.reset();
        m_getter.Close();
        m_getter.Disconnect(0);
        // The getter names the URL as it was given.
        m_result.error = m_result.code == ZRHB_STOPPED
                             ? "Stopped by an interrupt."
                             : platform::MaskSecrets(TextFromBytes(m_error.View()));
        return std::move(m_result);
    }

private:
    DWORD Load() {
        DWORD code = Connect();
        if (code != ZRHB_OK) return code;
        if (m_options.collect && !m_isApplication)
            m_collector.emplace(m_getter.Get_IWebBrowser2_ptr());
        if (m_options.visible) m_getter.PutVisible(TRUE);
        if (m_options.contentType) m_getter.DoNextOpenForSpecialContentType(m_request.contentType);
        code = Open();
        if (code != ZRHB_OK) return code;
        if (m_options.save) return ReadLines();
        if (m_options.collect && m_isApplication) return Collect();
        // A recording is made of pages that are read as text.
        CString text;
        CByteBuffer bytes(65536, 65536);
        return TrafficOf(m_options.url).isRecorded ? Read(text) : Read(bytes);
    }

    DWORD Connect() {
        ChooseEngine();
        if (m_options.via == "hidden") m_hidden.emplace();
        const auto variant =
            m_options.via == "hidden" ? CZrHbUHttpGet::eInvisible : CZrHbUHttpGet::eVisible;
        // What never shows needs a window to belong to.
        return m_getter.ConnectV3(GetDesktopWindow(), m_error, variant,
                                  CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "zrhttp",
                                  CString(), 0, m_isApplication ? 0 : 1);
    }

    void ChooseEngine() const {
        if (!m_options.engine.empty())
            setenv(m_isApplication ? "ZRHTTP_APPLICATION" : "ZRHTTP_CONTROL",
                   m_options.engine.c_str(), 1);
        // Newer systems decide by the server where its pages open; here the person has.
        if (m_isApplication) setenv("ZRHTTP_LEGACY_SYSTEM", "1", 1);
    }

    DWORD Open() {
        // Kept open, the browser goes on delivering events after the page has been read.
        const BOOL keepOpen = m_options.collect ? TRUE : FALSE;
        if (!m_request.body) return m_getter.Open(m_request.url, m_error, keepOpen);
        std::string body = *m_request.body;
        return m_getter.Open(m_request.url, m_error, body.data(), static_cast<DWORD>(body.size()),
                             m_request.headers, keepOpen);
    }

    template <class TPage>
    DWORD Read(TPage& page) {
        CString url;
        const DWORD code =
            m_getter.BusyRead2(page, m_error, url, &m_request.titles, m_options.timeout,
                               m_options.largeData, m_options.idleTimeout, OnWaiting, this);
        m_result.url = TextFromBytes(url.View());
        if (code != ZRHB_OK) return code;
        m_result.page = BytesOf(page);
        m_result.length = m_result.page.size();
        return code;
    }

    // The application hands out its pages one by one; being idle after them is the end of them.
    DWORD Collect() {
        CStringArray pages;
        CStringArray urls;
        const DWORD code =
            m_getter.BusyRead2(pages, m_error, urls, &m_request.titles, m_options.timeout,
                               m_options.largeData, m_options.idleTimeout, OnWaiting, this);
        for (int i = 0; i < pages.GetSize(); ++i)
            m_result.pages.push_back({TextFromBytes(urls[i].View()), BytesOf(pages[i])});
        if (code != ZRHB_IDLE_TIMEOUT || pages.GetSize() == 0) return code;
        m_result.url = m_result.pages.back().url;
        m_result.length = m_result.pages.back().source.size();
        m_error = HasDocument() ? "" : "The last page could not be loaded.";
        return m_error.IsEmpty() ? ZRHB_OK : ZRHB_READ_FAILED;
    }

    // A navigation that failed ends like a page, an empty one, but leaves no document.
    bool HasDocument() {
        IWebBrowser2* browser = m_getter.Get_IWebBrowser2_ptr();
        CComPtr<IDispatch> document;
        return browser && SUCCEEDED(browser->get_Document(&document)) && document;
    }

    static std::string BytesOf(const CString& page) { return std::string(page.View()); }
    static std::string BytesOf(const CByteBuffer& page) {
        return std::string(page.GetData(), page.GetData() + page.GetSize());
    }

    // As the getter saves pages, for a file that appears when it is complete.
    DWORD ReadLines() {
        CString page;
        const DWORD code = Read(page);
        page.Replace("\r\n", "\n");
        page.Replace("\n", "\r\n");
        m_result.page = BytesOf(page);
        m_result.length = m_result.page.size();
        return code;
    }

    // What only the browser knows, before it is let go.
    void AskBrowser() {
        CZrHbUHttpGet::HandleWinMessageQueue();
        if (m_collector) m_result.pages = m_collector->TakePages();
        IWebBrowser2* browser = m_hidden ? m_hidden->Browser() : m_getter.Get_IWebBrowser2_ptr();
        if (!browser) return;
        CComBSTR status;
        if (SUCCEEDED(browser->get_StatusText(&status)))
            m_result.status = platform::MaskSecrets(platform::Utf8FromWide(status.View()));
        CComPtr<IPageReply> reply;
        LONG httpStatus = 0;
        if (SUCCEEDED(browser->QueryInterface(IPageReply::Iid, reinterpret_cast<void**>(&reply))) &&
            SUCCEEDED(reply->get_Status(&httpStatus)) && httpStatus != 0)
            m_result.httpStatus = static_cast<int>(httpStatus);
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
    std::optional<CreatedControl> m_hidden; // which the getter does not hand out
    std::optional<PageCollector> m_collector;
    const bool m_isApplication = m_options.via == "application";
    CString m_error;
    FetchResult m_result;
};

} // namespace

FetchResult FetchPage(const FetchOptions& options, const FetchRequest& request) {
    return PageFetch(options, request).Run();
}

} // namespace zrhttp
