#include "Core/Support/HugePages.h"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace {

constexpr std::size_t huge_page = std::size_t{2} << 20;  // bytes, the x86-64 size

}  // namespace

void* allocate_huge(std::size_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    void* block = std::malloc(bytes);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
#else
    // Only whole, aligned huge pages can be backed by one: map a huge page more and trim both ends.
    std::size_t mapped = bytes + huge_page;
    void* raw = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED)
        throw std::bad_alloc();
    auto start = reinterpret_cast<std::uintptr_t>(raw);
    std::uintptr_t aligned = (start + huge_page - 1) & ~(std::uintptr_t{huge_page} - 1);
    if (aligned != start)
        munmap(raw, aligned - start);
    std::size_t tail = start + mapped - (aligned + bytes);
    if (tail != 0)
        munmap(reinterpret_cast<void*>(aligned + bytes), tail);
    void* block = reinterpret_cast<void*>(aligned);
    madvise(block, bytes, MADV_HUGEPAGE);
    return block;
#endif
}

void release_huge(void* block, std::size_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    (void)bytes;
    std::free(block);
#else
    munmap(block, bytes);
#endif
}
