// The browser object of the Chromium engine: one page of a Chromium application.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "browser/chromium/ChromiumApplication.h"
#include "browser/common/BrowserObject.h"

namespace platform {

class ChromiumBrowser final : public BrowserObject {
public:
    // The browser application, in a process of its own: on the display when there is one.
    static HRESULT CreateApplication(REFIID iid, void** ppObject);
    // The browser control: without a window of its own.
    static HRESULT CreateControl(REFIID iid, void** ppObject);
    // Starts a browser and tries. False with the reason when it does not start.
    static bool SendsPostsOnce(std::string& error);

    explicit ChromiumBrowser(ChromiumApplication::Windows windows) : m_windows(windows) {}

    // For its page, on the owner's thread.
    void OnTargetGone();
    void OnPopUp(const std::string& target, const std::string& session);
    void OnDialogOpened(const Json& params);
    void OnDialogClosed();

protected:
    ~ChromiumBrowser() override;

    HRESULT StartNavigation(NavigationRequest request) override;
    HRESULT StartNewWindow(NavigationRequest request) override;
    void StopLoading() override;
    void EndEngine() override;
    bool IsEngineAlive() const override { return !m_page || m_page->Application().IsAlive(); }
    void ShowWindow(bool isVisible) override;
    void SetEngineOffline(bool isOffline) override;
    HWND Window() const override;
    void* FindOther(REFIID iid) override;

private:
    // Only objects of this class answer it.
    static constexpr IID kClassIid{
        0x7C1E5A02, 0x93D4, 0x4B61, {0xA8, 0x0F, 0x2D, 0x64, 0xE7, 0x15, 0xB3, 0x9C}};

    static HRESULT Create(ChromiumApplication::Windows windows, REFIID iid, void** ppObject);
    bool Launch(std::string& error);
    bool HasPage() const { return m_page != nullptr; }
    void TakePage(std::shared_ptr<ChromiumPage> page);
    void TakeWindow();
    std::string RefusalOf(const NavigationRequest& request) const;
    CComPtr<ChromiumBrowser> ChooseWindow(CComPtr<IWebBrowser2>& foreign, bool& isCancelled);
    void OpenWindow(const NavigationRequest& request);
    void BecomePopUp(ChromiumBrowser& opener, const std::string& target,
                     const std::string& session);
    void AnswerDialog(const Json& params);
    void LetGo();

    const ChromiumApplication::Windows m_windows;
    std::shared_ptr<ChromiumPage> m_page; // null: not started yet, or ended
    std::unique_ptr<BrowserWindow> m_window;
    bool m_isPopUp = false;
    std::vector<CComPtr<IWebBrowser2>> m_ownWindows; // opened for pages that nobody took
};

} // namespace platform
