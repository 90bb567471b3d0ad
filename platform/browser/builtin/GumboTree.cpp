#include "browser/builtin/GumboTree.h"

#include <csetjmp>
#include <ctime>

#include "browser/builtin/ParseMemory.h"

namespace platform {
namespace {

std::clock_t ThreadMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

// One parse. Gumbo frees a tree by recursion, which a deep one turns into a stack overflow; here
// the tree is never freed node by node, its memory goes as a whole. And gumbo knows no way to stop
// half-way: it asks for memory all the time, so that is where a parse that costs too much is left,
// by a jump over its (plain C) frames.
class GumboParse {
public:
    explicit GumboParse(const TreeLimits& limits)
        : m_memory(limits.bytes), m_deadline(ThreadMilliseconds() + limits.time.count()) {}

    // Null when it costs too much. The tree lives as long as this object. Nothing with a destructor
    // may live in here: the jump passes over it.
    const GumboOutput* Run(std::string_view utf8) {
        if (setjmp(m_giveUp) != 0) return nullptr;
        GumboOptions options = kGumboDefaultOptions;
        options.allocator = &GumboParse::Allocate;
        options.deallocator = &GumboParse::Free;
        options.userdata = this;
        options.max_errors = 0;
        return gumbo_parse_with_options(&options, utf8.data(), utf8.size());
    }

private:
    static void* Allocate(void* self, std::size_t size) {
        return static_cast<GumboParse*>(self)->Add(size);
    }
    static void Free(void* self, void* block) {
        if (block) static_cast<GumboParse*>(self)->m_memory.Free(block);
    }

    void* Add(std::size_t size) {
        const bool isTimeOver = ++m_calls % 16 == 0 && ThreadMilliseconds() > m_deadline;
        void* const block = isTimeOver ? nullptr : m_memory.Allocate(size);
        if (!block) std::longjmp(m_giveUp, 1);
        return block;
    }

    ParseMemory m_memory;
    std::jmp_buf m_giveUp;
    const std::clock_t m_deadline;
    std::size_t m_calls = 0;
};

} // namespace

bool VisitGumboTree(std::string_view utf8, const std::function<void(const GumboNode&)>& visit,
                    const TreeLimits& limits) {
    GumboParse parse(limits);
    const GumboOutput* output = parse.Run(utf8);
    if (!output) return false;
    visit(*output->document);
    return true;
}

} // namespace platform
