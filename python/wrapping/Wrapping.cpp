// Wrapping.
#include "Wrapping.h"

#include <new>

PyObject* outOfMemory()
{
    PyErr_SetString(PyExc_MemoryError, "Out of memory.");
    return nullptr;
}

PyObject* toPythonException()
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return outOfMemory();
    } catch (const std::exception& problem) {
        PyErr_SetString(PyExc_RuntimeError, problem.what());
        return nullptr;
    }
}

PyObject* addressToPython(const void* address, const char* typeName)
{
    try {
        return toPython(pointers::encode(address, typeName));
    } catch (const std::bad_alloc&) {
        return outOfMemory();
    }
}

bool refuseType(int position, const char* function, const char* expected)
{
    PyErr_Format(PyExc_TypeError, "Type error in argument %d of %s. Expected %s.", position, function, expected);
    return false;
}

bool refuseNull(int position, const char* function, const char* expected)
{
    PyErr_Format(PyExc_ValueError, "Received a NULL Pointer in argument %d of %s. Expected %s.", position, function,
                 expected);
    return false;
}
