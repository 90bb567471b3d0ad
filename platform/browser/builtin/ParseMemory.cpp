#include "browser/builtin/ParseMemory.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace platform {
namespace {

constexpr std::size_t kSpanBytes = std::size_t{64} * 1024;
constexpr std::size_t kPieceBytes = std::size_t{1024} * 1024; // taken from the system at once
constexpr std::size_t kGrain = alignof(std::max_align_t);
constexpr std::size_t kMaxFineBytes = 512; // sizes up to here differ by the grain, others by 2
constexpr std::size_t kMaxSmallBytes = std::size_t{16} * 1024;
constexpr std::size_t kFineClasses = kMaxFineBytes / kGrain;

std::size_t RoundUp(std::size_t size, std::size_t unit) {
    return (size + unit - 1) / unit * unit;
}

} // namespace

ParseMemory::~ParseMemory() {
    for (Span* span = m_all.next; span;) {
        Span* const next = span->next;
        std::free(span);
        span = next;
    }
}

void* ParseMemory::Allocate(std::size_t size) {
    if (size > kMaxSmallBytes) return AllocateLarge(size);
    if (size > kMaxFineBytes) return AllocateSmall(std::bit_ceil(size));
    return AllocateSmall(size == 0 ? kGrain : RoundUp(size, kGrain));
}

void ParseMemory::Free(void* block) {
    Span* const span = SpanOf(block);
    if (span->blockBytes <= kMaxSmallBytes) {
        SizeClass& sizes = ClassOf(span->blockBytes);
        sizes.free = ::new (block) FreeBlock{sizes.free};
        return;
    }
    span->previous->next = span->next;
    if (span->next) span->next->previous = span->previous;
    m_bytes -= span->bytes;
    std::free(span);
}

void* ParseMemory::AllocateSmall(std::size_t blockBytes) {
    SizeClass& sizes = ClassOf(blockBytes);
    if (FreeBlock* const block = sizes.free) {
        sizes.free = block->next;
        return block;
    }
    if (sizes.unusedBytes < blockBytes) {
        Span* const span = TakeSpan();
        if (!span) return nullptr;
        span->blockBytes = blockBytes;
        sizes.unused = reinterpret_cast<std::byte*>(span + 1);
        sizes.unusedBytes = kSpanBytes - sizeof(Span);
    }
    void* const block = sizes.unused;
    sizes.unused += blockBytes;
    sizes.unusedBytes -= blockBytes;
    return block;
}

void* ParseMemory::AllocateLarge(std::size_t size) {
    if (size > m_maxBytes) return nullptr;
    Span* const span = TakeFromSystem(RoundUp(sizeof(Span) + size, kSpanBytes));
    if (!span) return nullptr;
    span->blockBytes = size;
    return span + 1;
}

ParseMemory::Span* ParseMemory::TakeSpan() {
    if (m_spareBytes == 0) {
        m_spare = reinterpret_cast<std::byte*>(TakeFromSystem(kPieceBytes));
        if (!m_spare) return nullptr;
        m_spareBytes = kPieceBytes;
    }
    // The first one of a piece knows its neighbours already.
    Span* const span =
        m_spareBytes == kPieceBytes ? reinterpret_cast<Span*>(m_spare) : ::new (m_spare) Span;
    m_spare += kSpanBytes;
    m_spareBytes -= kSpanBytes;
    return span;
}

ParseMemory::Span* ParseMemory::TakeFromSystem(std::size_t bytes) {
    if (bytes > m_maxBytes - m_bytes) return nullptr;
    void* const memory = std::aligned_alloc(kSpanBytes, bytes);
    if (!memory) return nullptr;
    Span* const span = ::new (memory) Span{0, bytes, &m_all, m_all.next};
    if (span->next) span->next->previous = span;
    m_all.next = span;
    m_bytes += bytes;
    return span;
}

ParseMemory::SizeClass& ParseMemory::ClassOf(std::size_t blockBytes) {
    if (blockBytes <= kMaxFineBytes) return m_classes[blockBytes / kGrain - 1];
    return m_classes[kFineClasses +
                     static_cast<std::size_t>(std::countr_zero(blockBytes / kMaxFineBytes)) - 1];
}

ParseMemory::Span* ParseMemory::SpanOf(void* block) {
    return reinterpret_cast<Span*>(reinterpret_cast<std::uintptr_t>(block) & ~(kSpanBytes - 1));
}

} // namespace platform
