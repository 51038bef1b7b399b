// Wrapping.
#include "Wrapping.h"

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
