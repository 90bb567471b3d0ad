#include "support/XServer.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace test_support {
namespace {

constexpr int kNumberDescriptor = 3; // where the server writes its display number

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

Connection Connect(const std::string& name) {
    Connection connection(xcb_connect(name.c_str(), nullptr));
    if (xcb_connection_has_error(connection.get())) throw std::runtime_error("no display " + name);
    return connection;
}

xcb_screen_t& Screen(xcb_connection_t* connection) {
    return *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

// numberPipe: what the program has as descriptor 3, or -1.
pid_t Start(std::vector<std::string> words, std::vector<std::string> variables, int numberPipe) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::vector<char*> environment;
    for (std::string& variable : variables)
        environment.push_back(variable.data());
    environment.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (numberPipe >= 0) posix_spawn_file_actions_adddup2(&actions, numberPipe, kNumberDescriptor);
    pid_t process = -1;
    const int failure = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(),
                                     environment.data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("cannot start " + words[0]);
    return process;
}

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

// Tells whether the window can be seen.
bool IsViewable(xcb_connection_t* connection, xcb_window_t window) {
    const auto asked = xcb_get_window_attributes(connection, window);
    const std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&std::free)> answer(
        xcb_get_window_attributes_reply(connection, asked, nullptr), &std::free);
    return answer && answer->map_state == XCB_MAP_STATE_VIEWABLE;
}

void WaitUntil(const std::function<bool()>& isDone) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isDone()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("the window manager does not start");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool IsRedirected(xcb_connection_t* connection, xcb_window_t root) {
    const auto asked = xcb_get_window_attributes(connection, root);
    const std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&std::free)> answer(
        xcb_get_window_attributes_reply(connection, asked, nullptr), &std::free);
    return answer && (answer->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

// Until it manages a window: while it starts it may lose one.
void WaitForWindowManager(const std::string& display) {
    const Connection owner = Connect(display);
    xcb_connection_t* const connection = owner.get();
    const xcb_window_t root = Screen(connection).root;
    WaitUntil([&] { return IsRedirected(connection, root); });
    const xcb_window_t probe = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, probe, root, 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    WaitUntil([&] {
        xcb_map_window(connection, probe);
        return IsViewable(connection, probe);
    });
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
    m_server = Start({"Xvfb", "-displayfd", std::to_string(kNumberDescriptor), "-nolisten", "tcp",
                      "-noreset", "-screen", "0", "1024x768x24"},
                     {}, ends[1]);
    close(ends[1]);
    const std::string number = ReadLine(ends[0]);
    close(ends[0]);
    if (number.empty()) throw std::runtime_error("Xvfb does not start");
    m_name = ":" + number;
}

void XServer::StartWindowManager() {
    const auto empty = Screenshot();
    m_windowManager = Start({"openbox", "--sm-disable"},
                            {"DISPLAY=" + m_name, "HOME=" + m_home, "PATH=/usr/bin:/bin"}, -1);
    WaitForWindowManager(m_name);
    WaitUntil([&] { return Screenshot() == empty; });
}

void XServer::End() {
    EndProcess(m_server);
    EndProcess(m_windowManager); // last, so that it does not rearrange anything
}

std::vector<std::uint8_t> XServer::Screenshot() const {
    const Connection connection = Connect(m_name);
    const xcb_screen_t& screen = Screen(connection.get());
    const auto asked =
        xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root, 0, 0,
                      screen.width_in_pixels, screen.height_in_pixels, ~std::uint32_t{0});
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> image(
        xcb_get_image_reply(connection.get(), asked, nullptr), &std::free);
    if (!image) throw std::runtime_error("no picture of the screen");
    const std::uint8_t* const pixels = xcb_get_image_data(image.get());
    return {pixels, pixels + xcb_get_image_data_length(image.get())};
}

} // namespace test_support
