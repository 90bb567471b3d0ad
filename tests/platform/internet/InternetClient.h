// A caller of the internet functions.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <platform/Internet.h>
#include <platform/LastError.h>
#include <platform/Prompt.h>

namespace platform_test {

// Closes its handle at the end.
class InternetHandle {
public:
    explicit InternetHandle(HINTERNET handle) : m_handle(handle) {}
    InternetHandle(InternetHandle&& other) noexcept
        : m_handle(std::exchange(other.m_handle, nullptr)) {}
    InternetHandle& operator=(InternetHandle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~InternetHandle() {
        if (!m_handle) return;
        EXPECT_TRUE(InternetCloseHandle(m_handle));
    }
    HINTERNET Get() const { return m_handle; }
    explicit operator bool() const { return m_handle != nullptr; }
    HINTERNET Release() { return std::exchange(m_handle, nullptr); }

private:
    HINTERNET m_handle;
};

inline InternetHandle OpenSession() {
    return InternetHandle(
        InternetOpenA("Test Agent/1.0", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
}

inline InternetHandle OpenUrl(const InternetHandle& session, const std::string& url) {
    return InternetHandle(InternetOpenUrlA(session.Get(), url.c_str(), nullptr, 0,
                                           INTERNET_FLAG_RELOAD | INTERNET_FLAG_KEEP_CONNECTION,
                                           0));
}

inline int StatusOf(const InternetHandle& request) {
    char buffer[32];
    DWORD length = sizeof buffer;
    const BOOL isThere =
        HttpQueryInfoA(request.Get(), HTTP_QUERY_STATUS_CODE, buffer, &length, nullptr);
    return isThere && buffer[length] == '\0' ? std::stoi(buffer) : -1;
}

inline std::optional<DWORD> LengthOf(const InternetHandle& request) {
    DWORD value = 0;
    DWORD length = sizeof value;
    if (HttpQueryInfoA(request.Get(), HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &value,
                       &length, nullptr))
        return value;
    EXPECT_EQ(ERROR_HTTP_HEADER_NOT_FOUND, GetLastError());
    return std::nullopt;
}

struct Body {
    std::string bytes;
    DWORD error = ERROR_SUCCESS; // of the read that failed
};

inline Body ReadAll(const InternetHandle& request, DWORD piece = 1024) {
    Body body;
    std::string buffer(piece, '\0');
    DWORD count = 0;
    for (;;) {
        if (!InternetReadFile(request.Get(), buffer.data(), piece, &count)) {
            body.error = GetLastError();
            return body;
        }
        if (count == 0) return body;
        body.bytes.append(buffer, 0, count);
    }
}

inline std::string LastResponseText() {
    DWORD error = 0;
    char buffer[1024];
    DWORD length = sizeof buffer - 1;
    EXPECT_TRUE(InternetGetLastResponseInfoA(&error, buffer, &length));
    EXPECT_EQ(error, GetLastError());
    return std::string(buffer, length);
}

// The number and the words of an attempt that must fail; "opened" when it does not.
inline std::pair<DWORD, std::string> FailureOfUrl(const std::string& url) {
    const InternetHandle session = OpenSession();
    const InternetHandle request = OpenUrl(session, url);
    if (request) return {0, "opened"};
    const DWORD error = GetLastError();
    return {error, LastResponseText()};
}

} // namespace platform_test
