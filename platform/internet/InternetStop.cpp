#include <platform/Internet.h>

namespace platform {
namespace {

thread_local const std::atomic<int>* t_word = nullptr;

} // namespace

ScopedInternetStop::ScopedInternetStop(const std::atomic<int>& word) : m_previous(t_word) {
    t_word = &word;
}

ScopedInternetStop::~ScopedInternetStop() {
    t_word = m_previous;
}

const std::atomic<int>* ScopedInternetStop::Current() {
    return t_word;
}

} // namespace platform
