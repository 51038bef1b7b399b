// Files: reading whole files, and the names that a message offers for a misspelt one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// The largest file that is read, bytes: far above any figure or scene, far below the memory.
constexpr std::size_t kLargestFile = std::size_t(256) << 20;

/// The whole content of a file, its bytes unchanged.
/// @throws InputError, naming the file, when it is missing, a directory or another thing than a
///         file, unreadable, or larger than kLargestFile
std::string readWholeFile(const std::string& path);

/// Whether there is anything at that path.
bool fileExists(const std::string& path);

/// The names that are nearest to a wrong one, for a message: up to three, by edit distance without
/// regard to case, the nearest first, equally near ones in the order given. A name counts as near
/// when at most a third of the longer one's letters differ, or when one contains the other.
/// @return e.g. ` Close names: "left_knee", "right_knee".`, with a leading blank; empty when no name is near
std::string closeNames(const std::string& wrong, const std::vector<std::string>& names);

/// Whether a text is UTF-8 without control characters, as names must be.
bool isPlainText(const std::string& text);

/// A text in quotes for a message: control characters and bytes that are no UTF-8 as \xNN, cut after 80 bytes.
std::string inQuotes(const std::string& text);
