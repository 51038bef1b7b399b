// Value pool: free lists of equal blocks. Blocks are never handed back to the heap; there is one thread.
#include "ValuePool.h"

#include "qc/qcValue.h"

#include <cstdlib>
#include <cstring>
#include <new>

#ifdef QC_POOL_IS_HEAP

// Under the address sanitizer every block is the heap's own, so that a misuse is seen.
void* ValuePool::takeValue()
{
    return ::operator new(sizeof(qcValue));
}

char* ValuePool::takeText(std::size_t size)
{
    return static_cast<char*>(::operator new(size));
}

void ValuePool::giveText(char* memory, std::size_t)
{
    ::operator delete(memory);
}

#else

bool ValuePool::recycles = false;

namespace {

bool heapIsAskedFor()
{
    static const bool asked = [] {
        const char* wanted = std::getenv("QC_VALUE_MEMORY");
        return wanted && std::strcmp(wanted, "heap") == 0;
    }();
    return asked;
}

// A free list of blocks of one size, which grows by whole chunks.
class BlockPool {
public:
    explicit constexpr BlockPool(std::size_t size) : blockSize(size) {}

    // `size`: at most the blocks' own; what is asked of the heap when there is no pool
    void* take(std::size_t size)
    {
        if (!firstFree) {   // as ever without a pool
            if (heapIsAskedFor())
                return ::operator new(size);
            grow();
        }
        FreeBlock* block = firstFree;
        firstFree = block->next;
        return block;
    }

    void give(void* memory)
    {
        FreeBlock* block = static_cast<FreeBlock*>(memory);
        block->next = firstFree;
        firstFree = block;
    }

private:
    struct FreeBlock {
        FreeBlock* next;
    };
    struct Chunk {
        Chunk* next;
        void* padding;   // keeps the blocks behind it aligned
    };
    static constexpr std::size_t kBlocksPerChunk = 127;

    void grow()
    {
        char* memory = static_cast<char*>(::operator new(sizeof(Chunk) + kBlocksPerChunk * blockSize));
        ValuePool::recycles = true;
        Chunk* chunk = reinterpret_cast<Chunk*>(memory);
        chunk->next = chunks;   // keeps every chunk reachable
        chunks = chunk;
        for (std::size_t i = kBlocksPerChunk; i > 0; --i)
            give(memory + sizeof(Chunk) + (i - 1) * blockSize);
    }

    std::size_t blockSize;
    FreeBlock* firstFree = nullptr;
    Chunk* chunks = nullptr;
};

constexpr std::size_t kShortText = 16;   // bytes with the final zero: holds every kind of load
constexpr std::size_t kLongText = 64;    // most site keys

BlockPool values(sizeof(qcValue));
BlockPool shortTexts(kShortText);
BlockPool longTexts(kLongText);

}   // namespace

void* ValuePool::takeValue()
{
    return values.take(sizeof(qcValue));
}

char* ValuePool::takeText(std::size_t size)
{
    if (size <= kShortText)
        return static_cast<char*>(shortTexts.take(size));
    if (size <= kLongText)
        return static_cast<char*>(longTexts.take(size));
    return static_cast<char*>(::operator new(size));
}

void ValuePool::giveText(char* memory, std::size_t size)
{
    if (recycles && size <= kShortText)
        return shortTexts.give(memory);
    if (recycles && size <= kLongText)
        return longTexts.give(memory);
    ::operator delete(memory);
}

#endif
