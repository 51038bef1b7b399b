// Place: where a figure stands, what it weighs, and how far its joints turn.
#include "Functions.h"
#include "Results.h"

namespace functions {

// qcFigure_isPosed(figure) -> 1 when its transforms are fixed and angles move nothing, else 0
PyObject* figureIsPosed(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_isPosed", [](qcFigure& f) { return toPython(f.isPosed() ? 1 : 0); });
}

// qcFigure_getRoot(figure) -> ((x, y, z), (rx_deg, ry_deg, rz_deg)) as set, cm and degrees
PyObject* figureGetRoot(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getRoot", [](qcFigure& f) {
        double at[3], turn[3];
        f.getRoot(at, turn);
        return Py_BuildValue("((ddd)(ddd))", at[0], at[1], at[2], turn[0], turn[1], turn[2]);
    });
}

// qcFigure_standOnFloor(figure) -> None; until its root is set, its lowest site on a foot lies on y = 0
PyObject* figureStandOnFloor(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_standOnFloor", [](qcFigure& f) {
        f.standOnFloor();
        return none();
    });
}

// qcFigure_isOnFloor(figure) -> 1 while it stands on the floor, else 0
PyObject* figureIsOnFloor(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_isOnFloor",
                              [](qcFigure& f) { return toPython(f.isOnFloor() ? 1 : 0); });
}

// qcFigure_getBodyMass(figure) -> g
PyObject* figureGetBodyMass(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getBodyMass", [](qcFigure& f) { return toPython(f.getBodyMass()); });
}

// qcFigure_getBodyCenterOfMass(figure) -> (x, y, z), cm, in the world
PyObject* figureGetBodyCenterOfMass(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getBodyCenterOfMass",
                              [](qcFigure& f) { return toPython(f.getBodyCenterOfMass()); });
}

// qcJoint_getAngleLimits(joint, i) -> (lower, upper) of angle i, from 1, rad; None without limits
PyObject* jointGetAngleLimits(PyObject*, PyObject* args)
{
    Object<qcJoint> joint;
    int i;
    if (!PyArg_ParseTuple(args, "si:qcJoint_getAngleLimits", &joint.text, &i)
        || !decode("qcJoint_getAngleLimits", joint))
        return nullptr;
    double lower, upper;
    return joint->getAngleLimits(i, lower, upper) ? Py_BuildValue("(dd)", lower, upper) : none();
}

// qcJoint_getAngleName(joint, i) -> the name of angle i, from 1; empty when it has none
PyObject* jointGetAngleName(PyObject*, PyObject* args)
{
    Object<qcJoint> joint;
    int i;
    if (!PyArg_ParseTuple(args, "si:qcJoint_getAngleName", &joint.text, &i) || !decode("qcJoint_getAngleName", joint))
        return nullptr;
    return toPython(joint->getAngleName(i));
}

}   // namespace functions
