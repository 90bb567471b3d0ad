#include "browser/builtin/GumboTree.h"

#include <csetjmp>
#include <cstdlib>
#include <ctime>

namespace platform {
namespace {

std::clock_t ThreadMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

// All memory of one parse. Gumbo frees a tree by recursion, which a deep one turns into a stack
// overflow; here the tree is never freed node by node, its memory goes as a whole. And gumbo knows
// no way to stop half-way: it asks for memory all the time, so that is where a parse that costs
// too much is left, by a jump over its (plain C) frames.
class ParseMemory {
public:
    explicit ParseMemory(const TreeLimits& limits)
        : m_maxBytes(limits.bytes), m_deadline(ThreadMilliseconds() + limits.time.count()) {}
    ParseMemory(const ParseMemory&) = delete;
    ParseMemory& operator=(const ParseMemory&) = delete;
    ~ParseMemory() {
        while (Block* block = m_blocks.next)
            Remove(block);
    }

    std::jmp_buf& GiveUp() { return m_giveUp; }

    static void* Allocate(void* self, std::size_t size) {
        return static_cast<ParseMemory*>(self)->Add(size);
    }
    static void Free(void* self, void* pointer) {
        if (pointer) static_cast<ParseMemory*>(self)->Remove(static_cast<Block*>(pointer) - 1);
    }

private:
    struct alignas(std::max_align_t) Block {
        Block* previous = nullptr;
        Block* next = nullptr;
        std::size_t size = 0;
    };

    void* Add(std::size_t size) {
        const bool isTimeOver = ++m_calls % 16 == 0 && ThreadMilliseconds() > m_deadline;
        void* memory =
            isTimeOver || m_bytes + size > m_maxBytes ? nullptr : std::malloc(sizeof(Block) + size);
        if (!memory) std::longjmp(m_giveUp, 1);
        Block* block = ::new (memory) Block{&m_blocks, m_blocks.next, size};
        if (block->next) block->next->previous = block;
        m_blocks.next = block;
        m_bytes += size;
        return block + 1;
    }

    void Remove(Block* block) {
        block->previous->next = block->next;
        if (block->next) block->next->previous = block->previous;
        m_bytes -= block->size;
        std::free(block);
    }

    std::jmp_buf m_giveUp;
    Block m_blocks;
    const std::size_t m_maxBytes;
    const std::clock_t m_deadline;
    std::size_t m_bytes = 0;
    std::size_t m_calls = 0;
};

// Nothing with a destructor may live in here: the jump passes over it.
const GumboOutput* Parse(ParseMemory& memory, std::string_view utf8) {
    if (setjmp(memory.GiveUp()) != 0) return nullptr;
    GumboOptions options = kGumboDefaultOptions;
    options.allocator = &ParseMemory::Allocate;
    options.deallocator = &ParseMemory::Free;
    options.userdata = &memory;
    options.max_errors = 0;
    return gumbo_parse_with_options(&options, utf8.data(), utf8.size());
}

} // namespace

bool VisitGumboTree(std::string_view utf8, const std::function<void(const GumboNode&)>& visit,
                    const TreeLimits& limits) {
    ParseMemory memory(limits);
    const GumboOutput* output = Parse(memory, utf8);
    if (!output) return false;
    visit(*output->document);
    return true;
}

} // namespace platform
