// Large blocks of memory that the kernel may back with huge pages.
#ifndef MORVANE_CORE_SUPPORT_HUGEPAGES_H
#define MORVANE_CORE_SUPPORT_HUGEPAGES_H

#include <cstddef>

/// A block of `bytes` for stores that a run touches all over, such as the tails of thousands of
/// histories: in huge pages a few TLB entries cover them. Only a hint to the kernel; without
/// transparent huge pages the block is ordinary memory. Throws std::bad_alloc when there is none.
/// Under AddressSanitizer the block is a malloc block, so that the checks see it.
void* allocate_huge(std::size_t bytes);
/// Gives back a block of allocate_huge with the same size.
void release_huge(void* block, std::size_t bytes);

#endif  // MORVANE_CORE_SUPPORT_HUGEPAGES_H
