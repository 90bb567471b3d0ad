#include "zrhttp/Milliseconds.h"

#include <charconv>
#include <cstdint>

#include <CLI/CLI.hpp>

namespace zrhttp {
namespace {

std::string Objection(const std::string& text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber ? std::string() : "expected milliseconds, 0 to 4294967295";
}

} // namespace

void TakesMilliseconds(CLI::Option& option) {
    option.type_name("MS")
        ->check(CLI::Validator([](std::string& text) { return Objection(text); }, ""))
        ->capture_default_str();
}

} // namespace zrhttp
