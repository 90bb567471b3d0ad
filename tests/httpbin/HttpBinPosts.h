// A getter on a builtin or Chromium browser, and httpbin for it to post to.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ZrHbUHttpGet.h>

#include "support/HttpBin.h"
#include "support/TemporaryHome.h"

namespace test_support {

// The parameter is the engine: "builtin" (in-process back-end) or "chromium" (out of process).
class HttpBinPosts : public testing::TestWithParam<const char*> {
protected:
    static void SetUpTestSuite() { s_server = std::make_unique<HttpBin>(); }
    static void TearDownTestSuite() { s_server.reset(); }
    void SetUp() override;

    // What httpbin understood of a request; the test fails without an answer. pszHeaders: as the
    // getter takes them.
    nlohmann::json Get(const std::string& pathAndQuery);
    nlohmann::json Post(std::string_view body, const char* pszHeaders);
    // The path of a new file with this content.
    CString FileWith(std::string_view name, std::string_view content);

private:
    nlohmann::json Read();

    static inline std::unique_ptr<HttpBin> s_server;
    const TemporaryHome m_home;
    const ScopedVariable m_application{"ZRHTTP_APPLICATION", GetParam()};
    const ScopedVariable m_headless{"ZRHTTP_HEADLESS", "1"};
    // Where the getter opens pages out of process.
    const ScopedVariable m_system{"ZRHTTP_LEGACY_SYSTEM",
                                  std::string_view(GetParam()) == "chromium" ? "1" : nullptr};
    CZrHbUHttpGet m_getter{eAppGroup_2};
    CString m_error;
};

// A field's value as bytes; httpbin answers with the code points of their values.
std::string Bytes(const nlohmann::json& text);
// A file's bytes, and the type line that they came with: "text" when httpbin took them for UTF-8
// and told no type.
struct UploadedFile {
    std::string type;
    std::string content;
};
UploadedFile FileOf(const nlohmann::json& file);

} // namespace test_support
