// Objects: the named properties and the time stamp of any host object.
#include "Functions.h"
#include "PropertyValues.h"
#include "Results.h"

#include <utility>

namespace functions {

// qcObject_getProperty(object, key) -> the value; None when the object has no such property
PyObject* objectGetProperty(PyObject*, PyObject* args)
{
    Object<qcObject> object;
    char* key;
    if (!PyArg_ParseTuple(args, "ss:qcObject_getProperty", &object.text, &key)
        || !decode("qcObject_getProperty", object))
        return nullptr;
    qcValue value;
    return object->getProperty(key, &value) ? toPython(value) : none();
}

// qcObject_setProperty(object, key, value) -> 1
PyObject* objectSetProperty(PyObject*, PyObject* args)
{
    Object<qcObject> object;
    char* key;
    PyObject* given;
    qcValue value;
    if (!PyArg_ParseTuple(args, "ssO:qcObject_setProperty", &object.text, &key, &given)
        || !decode("qcObject_setProperty", object) || !readValue("qcObject_setProperty", 3, given, value))
        return nullptr;
    return toPython(object->setProperty(key, std::move(value)));
}

// qcObject_removeProperty(object, key) -> 1; 0 when the object had no such property
PyObject* objectRemoveProperty(PyObject*, PyObject* args)
{
    Object<qcObject> object;
    char* key;
    if (!PyArg_ParseTuple(args, "ss:qcObject_removeProperty", &object.text, &key)
        || !decode("qcObject_removeProperty", object))
        return nullptr;
    return toPython(object->removeProperty(key));
}

// qcObject_getTimestamp(object) -> an integer that grows with every change
PyObject* objectGetTimestamp(PyObject*, PyObject* args)
{
    return ofObject<qcObject>(args, "s:qcObject_getTimestamp",
                              [](qcObject& object) { return PyInt_FromLong(object.getTimestamp()); });
}

}   // namespace functions
