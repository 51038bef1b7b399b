// Counted heap: how many blocks of this program are alive, and an allocation that fails when a test says so.
//
// A program that links CountedHeap.cpp has its own malloc, through which operator new and the libraries go too. Under a
// sanitizer, which has a malloc of its own, operator new alone is counted. Values and texts are then the heap's own.
#pragma once

#include <string>

namespace CountedHeap {

/// Blocks that are taken and not yet given back.
long liveBlocks();

/// From now on the n-th allocation fails, once; the first is 1. Replaces an earlier choice.
void failAllocation(long n);

/// Nothing fails any more. @return whether the chosen allocation came and failed
bool stopFailing();

}   // namespace CountedHeap

/// Collects the host's messages without memory from the heap, while it lives.
class FixedMessageLog {
public:
    FixedMessageLog();
    ~FixedMessageLog();
    FixedMessageLog(const FixedMessageLog&) = delete;
    FixedMessageLog& operator=(const FixedMessageLog&) = delete;

    /// What came since the last call, a text a line, and forgets it.
    std::string take();

private:
    void add(const char* text);

    char texts[4096] = "";
};
