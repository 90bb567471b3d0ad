// What the shared library shows: what is declared between these two. Everything else in it is
// hidden.
#pragma once

#define ZRHB_EXPORT_BEGIN _Pragma("GCC visibility push(default)")
#define ZRHB_EXPORT_END _Pragma("GCC visibility pop")
