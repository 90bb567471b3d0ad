// The bytes of a page as they arrive.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "browser/common/ByteBudget.h"

namespace platform {

// Written by one thread (the network's), read by any.
class ReplyBody {
public:
    // budget: what it shares with others, or null.
    explicit ReplyBody(std::shared_ptr<ByteBudget> budget = nullptr)
        : m_budget(std::move(budget)) {}
    ~ReplyBody();
    ReplyBody(const ReplyBody&) = delete;
    ReplyBody& operator=(const ReplyBody&) = delete;

    // False when the budget does not allow it: what was there is dropped, too.
    bool Append(std::string_view bytes);
    void Replace(std::string bytes);
    std::size_t Size() const;
    // Copies bytes from `offset` on, as many as there are and fit; returns how many.
    std::size_t Copy(std::size_t offset, char* target, std::size_t count) const;
    // Everything so far, without copying; for the writing thread, until its next Append.
    std::string_view ViewByWriter() const { return m_bytes; }

private:
    const std::shared_ptr<ByteBudget> m_budget;
    mutable std::mutex m_mutex;
    std::string m_bytes;
};

} // namespace platform
