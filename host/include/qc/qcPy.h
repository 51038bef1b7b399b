// Scripts: running Python source in the host's interpreter.
#pragma once

#include "qc/qcExport.h"

/// The host's interpreter, if one has registered itself.
class QC_API qcPy {
public:
    /// Runs a source text. @return 1 on success, 0 on failure
    typedef int (*Interpreter)(const char* source, void* data);

    /// Registers the interpreter that runs scripts from now on; null: there is none.
    static void registerInterpreter(Interpreter interpreter, void* data);

    /// Runs a Python source text.
    /// @return what the interpreter returns; 0 without one, after an error message that says so
    static int evalSimple(const char* source);
};
