#include "platform/internet/SlowNames.h"

#include <atomic>
#include <cstring>
#include <thread>

#include <dlfcn.h>
#include <netdb.h>

namespace {

std::atomic<bool> s_isHeld{false};
std::atomic<int> s_waiting{0};

} // namespace

// The transfer library calls this one: a program's own functions come before those of libraries.
extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                           addrinfo** result) {
    if (node && std::strcmp(node, platform_test::kSlowName) == 0) {
        ++s_waiting;
        while (s_isHeld)
            std::this_thread::yield();
        --s_waiting;
        return EAI_NONAME;
    }
    static const auto next =
        reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(node, service, hints, result);
}

namespace platform_test {

SlowNames::SlowNames() {
    s_isHeld = true;
}

SlowNames::~SlowNames() {
    s_isHeld = false;
    while (s_waiting > 0)
        std::this_thread::yield();
}

bool SlowNames::IsAsked() {
    return s_waiting > 0;
}

} // namespace platform_test
