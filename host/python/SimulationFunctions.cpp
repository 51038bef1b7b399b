// Simulation: the bound callbacks, run and listed.
#include "Functions.h"
#include "Results.h"
#include "Scripts.h"

#include "qc/qcSim.h"

namespace functions {

// qcSim_step(n) -> the callbacks' results of the last of n steps
PyObject* simStep(PyObject*, PyObject* args)
{
    int steps;
    if (!PyArg_ParseTuple(args, "i:qcSim_step", &steps))
        return nullptr;
    if (steps < 0) {
        PyErr_Format(PyExc_ValueError, "Argument 1 of qcSim_step is a number of steps: expected 0 or more, found %d.",
                     steps);
        return nullptr;
    }
    scripts::takeInterrupt();   // an older one
    qcSim::step(0);             // without steps there are no results
    // One at a time, so that an interrupt from the keyboard ends a long run, within a script and without.
    for (int i = 0; i < steps; ++i) {
        qcSim::step(1);
        if (scripts::takeInterrupt()) {
            PyErr_SetNone(PyExc_KeyboardInterrupt);
            return nullptr;
        }
        if (PyErr_CheckSignals() != 0)
            return nullptr;
    }
    Reference results(PyList_New(0));
    if (!results)
        return nullptr;
    for (int i = 0; i < qcSim::getNumResults(); ++i)
        if (!append(results, toPython(qcSim::getResult(i))))
            return nullptr;
    return results.release();
}

// qcSim_getBound() -> a list of (kind, owner), in binding order
PyObject* simGetBound(PyObject*, PyObject* args)
{
    if (!PyArg_ParseTuple(args, ":qcSim_getBound"))
        return nullptr;
    Reference bound(PyList_New(0));
    if (!bound)
        return nullptr;
    for (int i = 0; i < qcSim::getNumBound(); ++i)
        if (!append(bound, Py_BuildValue("(NN)", toPython(qcSim::getBoundKind(i)), toPython(qcSim::getBoundOwner(i)))))
            return nullptr;
    return bound.release();
}

}   // namespace functions
