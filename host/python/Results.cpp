// Results.
#include "Results.h"

PyObject* toPython(const qVector& vector)
{
    return Py_BuildValue("(ddd)", double(vector[0]), double(vector[1]), double(vector[2]));
}

PyObject* toPython(const qMatrix& matrix)
{
    const auto at = [&matrix](int row, int column) { return double(matrix.m[row][column]); };
    return Py_BuildValue("((dddd)(dddd)(dddd)(dddd))", at(0, 0), at(0, 1), at(0, 2), at(0, 3), at(1, 0), at(1, 1),
                         at(1, 2), at(1, 3), at(2, 0), at(2, 1), at(2, 2), at(2, 3), at(3, 0), at(3, 1), at(3, 2),
                         at(3, 3));
}

bool append(const Reference& list, PyObject* object)
{
    const Reference item(object);
    return item && PyList_Append(list.get(), item.get()) == 0;
}
