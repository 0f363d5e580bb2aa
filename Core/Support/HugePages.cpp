#include "Core/Support/HugePages.h"

#include <cstdlib>
#include <new>
#include <sys/mman.h>

void* allocate_huge(std::size_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    void* block = std::malloc(bytes);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
#else
    void* block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED)
        throw std::bad_alloc();
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
