// Export: which names of the host library other libraries may call.
#pragma once

/// Marks what libqc exports; everything else in it stays hidden.
#define QC_API __attribute__((visibility("default")))
