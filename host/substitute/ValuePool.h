// Value pool: recycled memory for values and short texts, so that storing results again costs no heap allocation.
//
// With QC_VALUE_MEMORY=heap in the environment every value and text is a block of the heap's own, so that a heap
// checker or a counting allocator sees each one; anything else means the pool. It is read once, when the first
// value or text asks for memory. Under the address sanitizer it is always the heap.
#pragma once

#include <cstddef>

// Under the address sanitizer every block is the heap's own, so that a misuse is seen.
#if defined(__SANITIZE_ADDRESS__)
#define QC_POOL_IS_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QC_POOL_IS_HEAP 1
#endif
#endif

namespace ValuePool {

/// Whether what is given back is recycled; else it is freed. Known once there is something to give back.
#ifdef QC_POOL_IS_HEAP
constexpr bool recycles = false;
#else
extern __attribute__((visibility("hidden"))) bool recycles;   // reached without a table
#endif

/// New memory for one value. Whoever recycles values keeps them; else ::operator delete frees it.
/// @throws std::bad_alloc, as takeText() does
void* takeValue();

/// Memory for a text of `size` bytes, its final zero included; the same size gives it back.
char* takeText(std::size_t size);
void giveText(char* memory, std::size_t size);

}   // namespace ValuePool
