#include "window/BrowserWindow.h"
#include "window/WindowTable.h"

namespace platform {
namespace {

class RememberedWindow final : public BrowserWindow {
public:
    RememberedWindow() {
        WindowTable& table = WindowTable::Get();
        table.RegisterClass(kBrowserWindowClass, &DefWindowProcA);
        WindowRequest request;
        request.className = kBrowserWindowClass;
        m_handle = table.Create(request);
    }
    ~RememberedWindow() override { WindowTable::Get().Destroy(m_handle); }
    RememberedWindow(const RememberedWindow&) = delete;
    RememberedWindow& operator=(const RememberedWindow&) = delete;

    HWND Handle() const override { return m_handle; }
    void Show(bool isVisible) override { ShowWindow(m_handle, isVisible ? SW_SHOW : SW_HIDE); }
    bool IsVisible() const override { return IsWindowVisible(m_handle) != FALSE; }
    void SetEnabled(bool isEnabled) override { EnableWindow(m_handle, isEnabled ? TRUE : FALSE); }
    // There is nobody else who could show it.
    void OnVisibleChanged(std::function<void(bool)>) override {}

private:
    HWND m_handle = nullptr;
};

} // namespace

std::unique_ptr<BrowserWindow> MakeRememberedWindow() {
    return std::make_unique<RememberedWindow>();
}

} // namespace platform
