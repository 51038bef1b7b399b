// Diagnostics: the module-wide flags, and labelled vectors on standard output.
#pragma once

#include "qc/qVector.h"

/// While non-zero a walk takes no other joint into account: one segment's own loads and weight.
extern int segmentOnly;

/// While non-zero printVector() prints. Nothing in the system sets it; a debugger may.
extern int debugPrint;

/// Prints "label[x][y][z]" while debugPrint is set.
void printVector(const char* label, const qVector& vector);
