// Scripts: handed to the interpreter that registered itself.
#include "qc/qcPy.h"

#include "qc/qcMessages.h"

namespace {

qcPy::Interpreter currentInterpreter = nullptr;
void* currentData = nullptr;

}   // namespace

void qcPy::registerInterpreter(Interpreter interpreter, void* data)
{
    currentInterpreter = interpreter;
    currentData = data;
}

int qcPy::evalSimple(const char* source)
{
    if (!currentInterpreter) {
        error("cannot run a script: no Python interpreter has registered itself. Import libqcc in Python first.");
        return 0;
    }
    return currentInterpreter(source, currentData);
}
