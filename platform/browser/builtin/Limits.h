// What a hostile or broken server can make the builtin engine do, at most.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "browser/common/BrowserLimits.h"

namespace platform {

// Pages that send the reader on without a pause. Log-in chains need a handful; a page that
// refreshes to itself for ever would keep the caller waiting for ever.
constexpr int kMaxImmediateRefreshes = 10;
// Delays above a day are as good as none, and stay clear of overflow.
constexpr int kMaxRefreshSeconds = 24 * 60 * 60;
// Frames of one navigation, nested ones included. Real framesets have fewer than twenty.
constexpr std::size_t kMaxFrames = 128;
// A frame within a frame within ...: frames of dynamic pages can nest without end.
constexpr int kMaxFrameDepth = 8;
// Connections to one host at a time, as browsers have it: frames load side by side without
// flooding a server.
constexpr long kMaxConnectionsPerHost = 6;

// Looking for frames needs the document as a tree. Larger documents are shown without frames.
constexpr std::size_t kMaxScannedBytes = std::size_t{16} * 1024 * 1024;
// Elements within elements. Building a deep tree takes time by the square of its depth; browsers
// cut at 512.
constexpr std::size_t kMaxElementDepth = 1024;
// What the tree of one document may cost. Pages of texts and tables take ten times their own size
// at most; those made of elements without content take up to sixty times.
constexpr std::size_t kMaxTreeBytes = std::size_t{256} * 1024 * 1024;
constexpr std::chrono::seconds kMaxTreeTime{5}; // of processor time

// Why a document fails of which that many bytes have come: here the page and its frames share the
// bytes of one page.
inline std::string TooLargeText(std::size_t bytes) {
    if (bytes > kMaxPageBytes) return PageTooLargeText();
    return "the page with its frames is larger than " + std::to_string(kMaxPageBytes) + " bytes";
}

} // namespace platform
