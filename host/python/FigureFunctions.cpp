// Figures: their parts, found by name or listed, their posed text, and where they stand.
#include "Functions.h"
#include "Results.h"

#include "qc/qcFigureFile.h"

#include <string>

namespace {

// A function of a figure and a name. @param format  for the parser, "ss:NAME"
template <class Call> PyObject* ofName(PyObject* args, const char* format, Call call)
{
    Object<qcFigure> figure;
    char* name;
    if (!PyArg_ParseTuple(args, format, &figure.text, &name) || !decode(format + 3, figure))
        return nullptr;
    return pointerToPython(call(*figure, name));
}

}   // namespace

namespace functions {

// qcFigure_getName(figure) -> its name
PyObject* figureGetName(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getName", [](qcFigure& f) { return toPython(f.getName()); });
}

// qcFigure_getSegments(figure) -> a list of segments, in the figure's order
PyObject* figureGetSegments(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getSegments",
                              [](qcFigure& f) { return pointersToPython<qcSegment>(f.getSegments()); });
}

// qcFigure_getSites(figure) -> a list of sites, in the figure's order
PyObject* figureGetSites(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getSites",
                              [](qcFigure& f) { return pointersToPython<qcSite>(f.getSites()); });
}

// qcFigure_getJoints(figure) -> a list of joints, in the figure's order
PyObject* figureGetJoints(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getJoints",
                              [](qcFigure& f) { return pointersToPython<qcJoint>(f.getJoints()); });
}

// qcFigure_findSegment(figure, name) -> the first segment of that name; "NULL" when there is none
PyObject* figureFindSegment(PyObject*, PyObject* args)
{
    return ofName(args, "ss:qcFigure_findSegment",
                  [](const qcFigure& figure, const char* name) { return figure.findSegment(name); });
}

// qcFigure_findJoint(figure, name) -> the first joint of that name; "NULL" when there is none
PyObject* figureFindJoint(PyObject*, PyObject* args)
{
    return ofName(args, "ss:qcFigure_findJoint",
                  [](const qcFigure& figure, const char* name) { return figure.findJoint(name); });
}

// qcFigure_findSite(figure, "segment.site") -> the site; "NULL" when there is none
PyObject* figureFindSite(PyObject*, PyObject* args)
{
    return ofName(args, "ss:qcFigure_findSite", [](const qcFigure& figure, const char* key) {
        const std::string fullName = std::string(figure.getName()) + "." + key;
        return figure.findSiteByFullName(fullName.c_str());
    });
}

// qcFigure_getReferenceSite(figure) -> the site that stands for the balance point
PyObject* figureGetReferenceSite(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getReferenceSite",
                              [](qcFigure& f) { return pointerToPython(f.getReferenceSite()); });
}

// qcFigure_getPosed(figure) -> the posed figure's JSON text; None after an error message
PyObject* figureGetPosed(PyObject*, PyObject* args)
{
    return ofObject<qcFigure>(args, "s:qcFigure_getPosed", [](qcFigure& f) {
        const std::string text = qcFigureFile::posedText(f);
        return text.empty() ? none() : toPython(text);
    });
}

// qcFigure_setRoot(figure, x, y, z, rx_deg, ry_deg, rz_deg) -> 1; 0 after an error message; cm, degrees
PyObject* figureSetRoot(PyObject*, PyObject* args)
{
    Object<qcFigure> figure;
    double x, y, z, rx, ry, rz;
    if (!PyArg_ParseTuple(args, "sdddddd:qcFigure_setRoot", &figure.text, &x, &y, &z, &rx, &ry, &rz)
        || !decode("qcFigure_setRoot", figure))
        return nullptr;
    return toPython(figure->setRoot(x, y, z, rx, ry, rz));
}

}   // namespace functions
