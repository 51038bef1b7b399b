// Messages: the host's channel for errors and warnings.
#pragma once

#include "qc/qcExport.h"

/// What a message is.
enum qcMessageKind { qcError = 0, qcWarning = 1 };

/// Reports an error or a warning, formatted as printf does. @return 0
///
/// Without a sink the text goes to standard error, as "error: …" or "warning: …" and a line break. Texts below 1024
/// bytes need no memory from the heap; a longer one is cut to that when there is none.
QC_API int error(const char* format, ...) __attribute__((format(printf, 1, 2)));
QC_API int warning(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Who collects messages instead of standard error.
class QC_API qcMessages {
public:
    /// Receives each text unchanged, with its own final line break if it has one. What it cannot keep for
    /// want of memory (std::bad_alloc) goes to standard error.
    typedef void (*Sink)(qcMessageKind kind, const char* text, void* data);

    /// Installs a sink, which replaces an earlier one; null goes back to standard error.
    static void setSink(Sink sink, void* data);
};
