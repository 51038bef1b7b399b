// Out of memory: a public member that lacks memory says so, once, and gives its failure value.
#pragma once

#include "qc/qcMessages.h"

#include <new>

/// Does a public member's work. Inside the analysis std::bad_alloc goes up to the public member that was called;
/// here it ends. The report itself needs no memory.
/// @return whether the work was done; false after the report
template <class Work> bool hasMemoryFor(const char* member, Work work)
{
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        error("StaticStrength ERROR: out of memory in %s", member);
        return false;
    }
}

/// The same for a member that gives a result. @return the work's result, or `failure` after the report
template <class Result, class Work> Result resultOr(Result failure, const char* member, Work work)
{
    Result result = failure;
    hasMemoryFor(member, [&] { result = work(); });
    return result;
}
