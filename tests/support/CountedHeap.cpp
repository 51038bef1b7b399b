// Counted heap.
#include "CountedHeap.h"

#include "qc/qcMessages.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

// Where malloc is another's, be it a sanitizer's or valgrind's, new and delete are counted. The build for valgrind
// says so itself.
#if defined(__SANITIZE_ADDRESS__)
#define SSTR_COUNTS_NEW_ALONE
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SSTR_COUNTS_NEW_ALONE
#endif
#endif

namespace {

// Before anything asks for a value: the pool would hide most of them.
[[maybe_unused]] const int valueMemoryChosen = setenv("QC_VALUE_MEMORY", "heap", 1);

// volatile: a compiler may hold that malloc changes no variable
volatile long live = 0;
volatile long untilFailure = 0;   // 0: none is to fail
volatile bool failureCame = false;

bool fails()
{
    if (untilFailure == 0)
        return false;
    untilFailure = untilFailure - 1;
    if (untilFailure > 0)
        return false;
    failureCame = true;
    errno = ENOMEM;
    return true;
}

void* counted(void* memory)
{
    live = live + (memory ? 1 : 0);
    return memory;
}

}   // namespace

#ifdef SSTR_COUNTS_NEW_ALONE

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return fails() ? nullptr : counted(std::malloc(size));
}

void* operator new(std::size_t size)
{
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size, std::nothrow);
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void* memory) noexcept
{
    live = live - (memory ? 1 : 0);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

void operator delete[](void* memory) noexcept
{
    operator delete(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

#else

// Seen by the libraries too, so that it is theirs.
#define SSTR_SHOWN extern "C" __attribute__((visibility("default")))

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);
extern "C" void __libc_free(void* memory);

SSTR_SHOWN void* malloc(std::size_t size) noexcept
{
    return fails() ? nullptr : counted(__libc_malloc(size));
}

SSTR_SHOWN void* calloc(std::size_t count, std::size_t size) noexcept
{
    return fails() ? nullptr : counted(__libc_calloc(count, size));
}

SSTR_SHOWN void* realloc(void* memory, std::size_t size) noexcept
{
    if (fails())
        return nullptr;
    void* const moved = __libc_realloc(memory, size);
    return memory ? moved : counted(moved);
}

SSTR_SHOWN void* memalign(std::size_t alignment, std::size_t size) noexcept
{
    return fails() ? nullptr : counted(__libc_memalign(alignment, size));
}

SSTR_SHOWN void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return memalign(alignment, size);
}

SSTR_SHOWN int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept
{
    *memory = memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

SSTR_SHOWN void free(void* memory) noexcept
{
    live = live - (memory ? 1 : 0);
    __libc_free(memory);
}

#endif

long CountedHeap::liveBlocks()
{
    return live;
}

void CountedHeap::failAllocation(long n)
{
    failureCame = false;
    untilFailure = n;
}

bool CountedHeap::stopFailing()
{
    untilFailure = 0;
    return failureCame;
}

FixedMessageLog::FixedMessageLog()
{
    qcMessages::setSink(
        [](qcMessageKind, const char* text, void* data) { static_cast<FixedMessageLog*>(data)->add(text); }, this);
}

FixedMessageLog::~FixedMessageLog()
{
    qcMessages::setSink(nullptr, nullptr);
}

void FixedMessageLog::add(const char* text)
{
    const std::size_t used = std::strlen(texts);
    std::strncat(texts, text, sizeof texts - used - 1);
    if (used + std::strlen(text) + 1 < sizeof texts && text[std::strlen(text) - 1] != '\n')
        std::strcat(texts, "\n");
}

std::string FixedMessageLog::take()
{
    const std::string taken = texts;
    texts[0] = '\0';
    return taken;
}
