// A handle of the internet API, closed once.
#pragma once

#include <memory>
#include <type_traits>

#include <platform/Internet.h>

struct CloseInternetHandle {
    void operator()(HINTERNET handle) const { InternetCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, CloseInternetHandle>;
