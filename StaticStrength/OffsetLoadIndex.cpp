// Offset load index: open addressing with linear probing.
#include "OffsetLoadIndex.h"

#include <cstdint>

void OffsetLoadIndex::build(const std::vector<loadWithOffset*>& list)
{
    count = list.size();
    if (count == 0)
        return;
    std::size_t size = 8;
    while (size < 2 * count)
        size *= 2;
    slots.assign(size, Slot{nullptr, kNone, kNone});
    next.assign(count, kNone);
    for (std::size_t i = 0; i < count; ++i) {
        const int record = static_cast<int>(i);
        Slot& slot = slots[slotOf(list[i]->site)];
        if (slot.first == kNone) {
            slot = Slot{list[i]->site, record, record};
        } else {
            next[static_cast<std::size_t>(slot.last)] = record;
            slot.last = record;
        }
    }
}

// The site's slot, or the free one where it belongs.
std::size_t OffsetLoadIndex::slotOf(const qcSite* site) const
{
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15u;   // 2^64 / golden ratio (multiplicative hashing)
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(site) * kSpread) >> 32) & mask;
    while (slots[slot].first != kNone && slots[slot].site != site)
        slot = (slot + 1) & mask;
    return slot;
}
