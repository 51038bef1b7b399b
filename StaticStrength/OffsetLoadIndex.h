// Offset load index: the records of each site, so that a walk meets every record once.
#pragma once

#include "qmStaticStrength.h"

#include <cstddef>
#include <vector>

/// A hash table from site to its records in list order. Built for a walk in time linear in the
/// records; its memory is kept, so that building it again allocates nothing.
class OffsetLoadIndex {
public:
    static constexpr int kNone = -1;

    void build(const std::vector<loadWithOffset*>& list);

    bool isEmpty() const { return count == 0; }

    /// The first record of a site, and the one after another; kNone at the end.
    int firstOf(const qcSite* site) const { return count == 0 ? kNone : slots[slotOf(site)].first; }
    int nextOf(int record) const { return next[static_cast<std::size_t>(record)]; }

private:
    struct Slot {
        const qcSite* site;
        int first;
        int last;
    };

    std::size_t slotOf(const qcSite* site) const;

    std::size_t count = 0;
    std::vector<Slot> slots;   // a power of two, at least twice as many as records
    std::vector<int> next;
};
