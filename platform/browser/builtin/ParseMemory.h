// The memory of one parse: small blocks by the million, bounded together, freed as a whole.
#pragma once

#include <array>
#include <cstddef>

namespace platform {

// Blocks carry no header and go back to a list of their size, so that memory is what they need, not
// half as much again.
class ParseMemory {
public:
    // maxBytes: of all that is taken from the system.
    explicit ParseMemory(std::size_t maxBytes) : m_maxBytes(maxBytes) {}
    ~ParseMemory();
    ParseMemory(const ParseMemory&) = delete;
    ParseMemory& operator=(const ParseMemory&) = delete;

    // Null when the bound is reached. Freed blocks serve later ones of their size.
    void* Allocate(std::size_t size);
    void Free(void* block);

private:
    // A span of memory begins on a boundary of 64 KiB with this. It holds blocks of one size, or is
    // the one block of its own: the address of a block leads to its span.
    struct alignas(std::max_align_t) Span {
        std::size_t blockBytes = 0;
        // Of what was taken from the system in one piece, at its first span.
        std::size_t bytes = 0;
        Span* previous = nullptr;
        Span* next = nullptr;
    };
    struct FreeBlock {
        FreeBlock* next;
    };
    struct SizeClass {
        FreeBlock* free = nullptr;
        std::byte* unused = nullptr; // of its newest span
        std::size_t unusedBytes = 0;
    };

    void* AllocateSmall(std::size_t blockBytes);
    void* AllocateLarge(std::size_t size);
    Span* TakeSpan();
    Span* TakeFromSystem(std::size_t bytes);
    SizeClass& ClassOf(std::size_t blockBytes);
    static Span* SpanOf(void* block);

    const std::size_t m_maxBytes;
    std::size_t m_bytes = 0;
    Span m_all; // the head of the list
    std::byte* m_spare = nullptr;
    std::size_t m_spareBytes = 0;
    std::array<SizeClass, 40> m_classes;
};

} // namespace platform
