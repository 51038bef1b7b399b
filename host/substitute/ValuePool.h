// Value pool: recycled memory for values and short texts, so that storing results again costs no heap allocation.
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

/// Whether values and texts are recycled; else they are the heap's own.
#ifdef QC_POOL_IS_HEAP
constexpr bool kRecycles = false;
#else
constexpr bool kRecycles = true;
#endif

/// New memory for one value. Whoever recycles values keeps them; else ::operator delete frees it.
void* takeValue();

/// Memory for a text of `size` bytes, its final zero included; the same size gives it back.
char* takeText(std::size_t size);
void giveText(char* memory, std::size_t size);

}   // namespace ValuePool
