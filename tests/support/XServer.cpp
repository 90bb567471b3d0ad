#include "support/XServer.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "browser/chromium/SpawnProgram.h"

namespace test_support {
namespace {

constexpr int kNumberDescriptor = 3; // where the server writes its display number

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

void EndProcess(pid_t& process) {
    if (process <= 0) return;
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
    process = -1;
}

// Up to the end of the line; empty when the writer ends before.
std::string ReadLine(int descriptor) {
    std::string line;
    for (char c = 0; read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

Reply<xcb_get_window_attributes_reply_t> AttributesOf(xcb_connection_t* connection,
                                                      xcb_window_t window) {
    const auto asked = xcb_get_window_attributes(connection, window);
    return {xcb_get_window_attributes_reply(connection, asked, nullptr), &std::free};
}

void WaitUntil(const std::function<bool()>& isDone) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isDone()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("the window manager does not start");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

} // namespace

XServer::XServer(WindowManager windowManager) {
    if (!::mkdtemp(m_home.data())) throw std::runtime_error("no temporary directory");
    StartServer();
    m_display.emplace("DISPLAY", m_name.c_str());
    m_headless.emplace("ZRHTTP_HEADLESS", nullptr);
    if (windowManager == WindowManager::openbox) StartWindowManager();
}

XServer::~XServer() {
    End();
    std::error_code ignored;
    std::filesystem::remove_all(m_home, ignored);
}

void XServer::StartServer() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    const auto server =
        platform::StartProgram({{"Xvfb", "-displayfd", std::to_string(kNumberDescriptor),
                                 "-nolisten", "tcp", "-terminate", "-screen", "0", "1024x768x24"},
                                {{ends[1], kNumberDescriptor}},
                                {}});
    close(ends[1]);
    m_name = ":" + ReadLine(ends[0]);
    close(ends[0]);
    m_server = server.value_or(-1);
    m_connection.reset(xcb_connect(m_name.c_str(), nullptr));
    if (xcb_connection_has_error(m_connection.get()))
        throw std::runtime_error("Xvfb does not start");
}

void XServer::StartWindowManager() {
    const auto empty = Screenshot();
    m_windowManager =
        platform::StartProgram({{"openbox", "--sm-disable"},
                                {},
                                {"DISPLAY=" + m_name, "HOME=" + m_home, "PATH=/usr/bin:/bin"}})
            .value_or(-1);
    WaitForWindowManager();
    WaitUntil([&] { return Screenshot() == empty; });
}

// Until it manages a window: while it starts it may lose one.
void XServer::WaitForWindowManager() const {
    const XConnection owner(xcb_connect(m_name.c_str(), nullptr)); // takes the window along
    const xcb_window_t root = Screen().root;
    WaitUntil([&] {
        const auto answer = AttributesOf(owner.get(), root);
        return answer && (answer->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    });
    const xcb_window_t probe = xcb_generate_id(owner.get());
    xcb_create_window(owner.get(), XCB_COPY_FROM_PARENT, probe, root, 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    WaitUntil([&] {
        xcb_map_window(owner.get(), probe);
        const auto answer = AttributesOf(owner.get(), probe);
        return answer && answer->map_state == XCB_MAP_STATE_VIEWABLE;
    });
}

void XServer::End() {
    EndProcess(m_server);
    EndProcess(m_windowManager); // last, so that it does not rearrange anything
}

const xcb_screen_t& XServer::Screen() const {
    return *xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
}

std::vector<std::uint8_t> XServer::Screenshot() const {
    const xcb_screen_t& screen = Screen();
    const auto asked =
        xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root, 0, 0,
                      screen.width_in_pixels, screen.height_in_pixels, ~std::uint32_t{0});
    const Reply<xcb_get_image_reply_t> image(
        xcb_get_image_reply(m_connection.get(), asked, nullptr), &std::free);
    if (!image) throw std::runtime_error("no picture of the screen");
    const std::uint8_t* const pixels = xcb_get_image_data(image.get());
    return {pixels, pixels + xcb_get_image_data_length(image.get())};
}

} // namespace test_support
