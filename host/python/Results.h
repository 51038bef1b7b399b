// Results: references that are released, and the host's vectors, transforms and lists as Python objects.
#pragma once

#include "HostTypes.h"

#include "qc/qList.h"
#include "qc/qMatrix.h"
#include "qc/qVector.h"

/// A tuple of three floats.
PyObject* toPython(const qVector& vector);

/// A tuple of four rows, tuples of four floats.
PyObject* toPython(const qMatrix& matrix);

/// Appends an object, whose reference it takes, to a Python list.
/// @return false with an exception set, also for a null object
bool append(const Reference& list, PyObject* object);

/// A Python list of the pointer strings of a list of T*.
template <class T> PyObject* pointersToPython(const qList* objects)
{
    Reference list(PyList_New(0));
    if (!list)
        return nullptr;
    for (qList* node = nullptr; (node = qList::iterator(objects, node));)
        if (!append(list, pointerToPython(static_cast<const T*>(node->getData()))))
            return nullptr;
    return list.release();
}
