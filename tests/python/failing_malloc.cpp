// A memory that runs out: preloaded, it makes the n-th allocation fail that one of our libraries asks for.
//
// An allocation counts when the stack tells that it is ours: walking outwards, a frame of our libraries comes before
// one of the interpreter, so that what the C++ library allocates for us counts too. What the interpreter
// allocates on our behalf counts when asked for. What was given out while armed is followed until it is freed.
#include <dlfcn.h>
#include <link.h>
#include <unwind.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

constexpr const char* kOurs[] = {"/libqmSSTRc.so", "/libqcc.so", "/libqc.so"};
constexpr int kMostRanges = 64;
constexpr std::size_t kSlots = 1 << 16;   // of blocks followed; a power of two

struct Range {
    std::uintptr_t begin, end;
    bool ours;   // else the interpreter's
};

Range ranges[kMostRanges];
int rangeCount = 0;
bool armed = false;
bool busy = false;   // while the stack is walked
bool interpreterToo = false;
bool allFurther = false;   // once one has failed
int wanted = 0;
int counted = 0;
int failed = 0;

void* slots[kSlots];   // null: free, kFreed: was taken
int outstanding = 0;
void* const kFreed = slots;

std::size_t slotOf(const void* block)
{
    return (reinterpret_cast<std::uintptr_t>(block) >> 4) * 0x9E3779B97F4A7C15u >> 48 & (kSlots - 1);
}

void follow(void* block)
{
    if (!block)
        return;
    for (std::size_t i = slotOf(block), tries = 0; tries < kSlots; i = (i + 1) & (kSlots - 1), ++tries)
        if (!slots[i] || slots[i] == kFreed) {
            slots[i] = block;
            ++outstanding;
            return;
        }
}

bool unfollow(void* block)
{
    if (!block || outstanding == 0)
        return false;
    for (std::size_t i = slotOf(block), tries = 0; slots[i] && tries < kSlots; i = (i + 1) & (kSlots - 1), ++tries)
        if (slots[i] == block) {
            slots[i] = kFreed;
            --outstanding;
            return true;
        }
    return false;
}

int addRanges(dl_phdr_info* info, std::size_t, void* interpreter)
{
    bool ours = false;
    for (const char* name : kOurs) {
        const char* file = info->dlpi_name ? std::strrchr(info->dlpi_name, '/') : nullptr;
        ours = ours || (file && std::strcmp(file, name) == 0);
    }
    bool holdsInterpreter = false;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& header = info->dlpi_phdr[i];
        const std::uintptr_t begin = info->dlpi_addr + header.p_vaddr;
        holdsInterpreter =
            holdsInterpreter
            || (header.p_type == PT_LOAD && reinterpret_cast<std::uintptr_t>(interpreter) - begin < header.p_memsz);
    }
    for (int i = 0; i < info->dlpi_phnum && (ours || holdsInterpreter); ++i) {
        const auto& header = info->dlpi_phdr[i];
        const std::uintptr_t begin = info->dlpi_addr + header.p_vaddr;
        if (header.p_type == PT_LOAD && rangeCount < kMostRanges)
            ranges[rangeCount++] = {begin, begin + header.p_memsz, ours};
    }
    return 0;
}

_Unwind_Reason_Code look(_Unwind_Context* context, void* found)
{
    const std::uintptr_t at = _Unwind_GetIP(context);
    for (int i = 0; i < rangeCount; ++i) {
        if (at < ranges[i].begin || at >= ranges[i].end)
            continue;
        if (ranges[i].ours)
            *static_cast<bool*>(found) = true;
        if (ranges[i].ours || !interpreterToo)
            return _URC_END_OF_STACK;
    }
    return _URC_NO_REASON;
}

// Whether an allocation counts. @param fails  whether it has to fail
bool counts(bool& fails)
{
    fails = false;
    if (!armed || busy)
        return false;
    busy = true;
    bool ours = false;
    _Unwind_Backtrace(look, &ours);
    busy = false;
    if (!ours)
        return false;
    ++counted;
    fails = counted == wanted || (allFurther && wanted > 0 && counted > wanted);
    if (fails)
        ++failed;
    return true;
}

}   // namespace

extern "C" {

void* malloc(std::size_t size)
{
    bool fails;
    const bool ours = counts(fails);
    void* block = fails ? nullptr : __libc_malloc(size);
    if (ours)
        follow(block);
    return block;
}

void* calloc(std::size_t count, std::size_t size)
{
    bool fails;
    const bool ours = counts(fails);
    void* block = fails ? nullptr : __libc_calloc(count, size);
    if (ours)
        follow(block);
    return block;
}

void* realloc(void* old, std::size_t size)
{
    bool fails;
    const bool ours = counts(fails);
    if (fails)
        return nullptr;
    const bool followed = unfollow(old);
    void* block = __libc_realloc(old, size);
    if (ours || followed)
        follow(block);
    return block;
}

void free(void* block)
{
    unfollow(block);
    __libc_free(block);
}

// From now on the n-th allocation fails, counted from 1, and `further` all after it; 0: none. `deep` counts what
// the interpreter allocates on behalf of our libraries too.
void failing_malloc_arm(int n, int further, int deep)
{
    std::memset(slots, 0, sizeof slots);
    outstanding = counted = failed = rangeCount = 0;
    dl_iterate_phdr(addRanges, dlsym(RTLD_DEFAULT, "PyErr_NoMemory"));
    wanted = n;
    allFurther = further != 0;
    interpreterToo = deep != 0;
    armed = true;
}

// Nothing fails any more. @return how many allocations failed
int failing_malloc_disarm()
{
    armed = false;
    return failed;
}

// How many allocations counted since the last arming.
int failing_malloc_counted()
{
    return counted;
}

// How many blocks that were given out while armed are not freed.
int failing_malloc_outstanding()
{
    return outstanding;
}
}
