// Host types: the pointer types that the host's functions take and give, and how arguments of them are read.
#pragma once

#include "wrapping/Wrapping.h"

#include "qc/qcFigure.h"
#include "qc/qcHuman.h"
#include "qc/qcScene.h"

template <> inline const char* pointerType<qVector>()
{
    return "_qVector_p";
}
template <> inline const char* pointerType<qcScene>()
{
    return "_qcScene_p";
}
template <> inline const char* pointerType<qcHuman>()
{
    return "_qcHuman_p";
}
template <> inline const char* pointerType<qcFigure>()
{
    return "_qcFigure_p";
}
template <> inline const char* pointerType<qcSegment>()
{
    return "_qcSegment_p";
}
template <> inline const char* pointerType<qcSite>()
{
    return "_qcSite_p";
}
template <> inline const char* pointerType<qcJoint>()
{
    return "_qcJoint_p";
}
/// Every host object, an analysis too, is taken for one of these: see registerObjectTypes().
template <> inline const char* pointerType<qcObject>()
{
    return "_qcObject_p";
}

/// Lets the pointer types of all host objects stand for "_qcObject_p".
void registerObjectTypes();

/// A number in single precision. @param position  of the argument, from 1; infinities and not-a-numbers pass
/// @return false with a ValueError set when the number is too large
bool toSingle(const char* function, int position, double number, float& out);

/// A function of one object: parses, decodes and calls. @param format  for the parser, "s:NAME"
template <class T, class Call> PyObject* ofObject(PyObject* args, const char* format, Call call)
{
    Object<T> object;
    const char* name = format + 2;
    if (!PyArg_ParseTuple(args, format, &object.text) || !decode(name, object))
        return nullptr;
    return call(*object);
}

/// An argument that is a file's name, parsed by "O&", pyFileName and &bytes.
struct FileName {
    PyObject* bytes = nullptr;

    FileName() = default;
    FileName(const FileName&) = delete;
    FileName& operator=(const FileName&) = delete;
    ~FileName() { Py_XDECREF(bytes); }

    const char* text() const { return PyBytes_AsString(bytes); }
};
