// Value pool: recycled memory for values and short texts, so that storing results again costs no heap allocation.
#pragma once

#include <cstddef>

namespace ValuePool {

/// Memory for one value.
void* takeValue();
void giveValue(void* memory);

/// Memory for a text of `size` bytes, its final zero included; the same size gives it back.
char* takeText(std::size_t size);
void giveText(char* memory, std::size_t size);

}   // namespace ValuePool
