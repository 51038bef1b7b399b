// Arrays: memory that Python holds by pointer strings, from malloc, so that any function may free it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace arrays {

/// A new array, its elements not set; texts are null, with one null more at the end.
/// @return null for a negative n and when there is no memory
template <class T> T* make(int n)
{
    if (n < 0)
        return nullptr;
    return static_cast<T*>(std::malloc(sizeof(T) * (static_cast<std::size_t>(n) + 1)));
}
template <> inline char** make<char*>(int n)
{
    return n < 0 ? nullptr : static_cast<char**>(std::calloc(static_cast<std::size_t>(n) + 1, sizeof(char*)));
}

/// Frees an array.
template <class T> void destroy(T* array)
{
    std::free(array);
}
/// Frees an array with its texts, up to the first null one.
template <> inline void destroy<char*>(char** array)
{
    for (char** entry = array; *entry; ++entry)
        std::free(*entry);
    std::free(array);
}

struct Destroy {
    template <class T> void operator()(T* array) const { destroy(array); }
};
/// An array of one's own; null after a failure.
template <class T> using Owned = std::unique_ptr<T, Destroy>;

/// Puts a copy of a text in place of an entry's; an empty or null one becomes a null entry.
/// @return false, the entry as it was, when there is no memory
inline bool setText(char*& entry, const char* text)
{
    char* copy = nullptr;
    if (text && *text && !(copy = strdup(text)))
        return false;
    std::free(entry);
    entry = copy;
    return true;
}

/// An entry's text; empty for a null entry.
inline const char* textOf(const char* entry)
{
    return entry ? entry : "";
}

}   // namespace arrays
