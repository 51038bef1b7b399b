// Bench tree: synthetic figures of any size, as posed-figure text.
#pragma once

#include <string>

/// A figure of `segments` segments of 1 kg, each hanging on an earlier one: on the one before it for
/// a branching of 1 (a chain), on number (i - 1) / branching else (a balanced tree). It stands on its
/// right foot, its root, so that one walk meets every segment.
std::string treeText(int segments, int branching);
