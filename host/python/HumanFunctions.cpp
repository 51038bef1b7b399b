// Humans: the parts of the figure that play a human's roles.
#include "Functions.h"
#include "Results.h"

namespace {

// A function of a human and a side. @param format  for the parser, "si:NAME"
template <class Call> PyObject* ofSide(PyObject* args, const char* format, Call call)
{
    Object<qcHuman> human;
    int side;
    const char* name = format + 3;
    if (!PyArg_ParseTuple(args, format, &human.text, &side) || !decode(name, human))
        return nullptr;
    if (side != qcRight && side != qcLeft) {
        PyErr_Format(PyExc_ValueError, "Argument 2 of %s is a side: expected 0 (right) or 1 (left), found %d.", name,
                     side);
        return nullptr;
    }
    return pointerToPython(call(*human, static_cast<qcSide>(side)));
}

}   // namespace

namespace functions {

// qcHuman_getFigure(human) -> its figure
PyObject* humanGetFigure(PyObject*, PyObject* args)
{
    return ofObject<qcHuman>(args, "s:qcHuman_getFigure", [](qcHuman& h) { return pointerToPython(h.getFigure()); });
}

// qcHuman_getFootSite(human, side) -> the foot's support point; side 0 right, 1 left, here and below
PyObject* humanGetFootSite(PyObject*, PyObject* args)
{
    return ofSide(args, "si:qcHuman_getFootSite", [](qcHuman& h, qcSide side) { return h.getFootSite(side); });
}

// qcHuman_getHandSite(human, side) -> the hand's site
PyObject* humanGetHandSite(PyObject*, PyObject* args)
{
    return ofSide(args, "si:qcHuman_getHandSite", [](qcHuman& h, qcSide side) { return h.getHandSite(side); });
}

// qcHuman_getKneeJoint(human, side) -> the knee
PyObject* humanGetKneeJoint(PyObject*, PyObject* args)
{
    return ofSide(args, "si:qcHuman_getKneeJoint", [](qcHuman& h, qcSide side) { return h.getKneeJoint(side); });
}

// qcHuman_getAnkleJoint(human, side) -> the ankle
PyObject* humanGetAnkleJoint(PyObject*, PyObject* args)
{
    return ofSide(args, "si:qcHuman_getAnkleJoint", [](qcHuman& h, qcSide side) { return h.getAnkleJoint(side); });
}

// qcHuman_getHipJoint(human, side) -> the hip
PyObject* humanGetHipJoint(PyObject*, PyObject* args)
{
    return ofSide(args, "si:qcHuman_getHipJoint", [](qcHuman& h, qcSide side) { return h.getHipJoint(side); });
}

// qcHuman_getPelvisSite(human) -> a site on the lower torso
PyObject* humanGetPelvisSite(PyObject*, PyObject* args)
{
    return ofObject<qcHuman>(args, "s:qcHuman_getPelvisSite",
                             [](qcHuman& h) { return pointerToPython(h.getPelvisSite()); });
}

// qcHuman_getWaistJoint(human) -> the waist
PyObject* humanGetWaistJoint(PyObject*, PyObject* args)
{
    return ofObject<qcHuman>(args, "s:qcHuman_getWaistJoint",
                             [](qcHuman& h) { return pointerToPython(h.getWaistJoint()); });
}

}   // namespace functions
