// Vectors: made, read, written and deleted by Python.
#include "Functions.h"
#include "Results.h"

#include <unordered_set>

namespace {

// Vectors that Python made and has not deleted: only these are its to delete.
std::unordered_set<const qVector*>& madeVectors()
{
    static auto* all = new std::unordered_set<const qVector*>;   // never destroyed, like what is left in it
    return *all;
}

// The components, which are the arguments from `position` on.
bool toComponents(const char* function, int position, const double numbers[3], float components[3])
{
    for (int i = 0; i < 3; ++i)
        if (!toSingle(function, position + i, numbers[i], components[i]))
            return false;
    return true;
}

}   // namespace

namespace functions {

// new_qVector(x, y, z) -> a new vector
PyObject* newQVector(PyObject*, PyObject* args)
{
    double numbers[3];
    float components[3];
    if (!PyArg_ParseTuple(args, "ddd:new_qVector", &numbers[0], &numbers[1], &numbers[2])
        || !toComponents("new_qVector", 1, numbers, components))
        return nullptr;
    auto vector = std::make_unique<qVector>(components[0], components[1], components[2]);
    Reference result(pointerToPython(vector.get()));
    if (!result)
        return nullptr;
    madeVectors().insert(vector.get());
    (void)vector.release();   // Python's from now on
    return result.release();
}

// delete_qVector(vector) -> None; nothing for "NULL"
PyObject* deleteQVector(PyObject*, PyObject* args)
{
    Pointer<qVector> vector;
    if (!PyArg_ParseTuple(args, "s:delete_qVector", &vector.text) || !decode("delete_qVector", vector))
        return nullptr;
    if (vector && madeVectors().erase(vector) == 0) {
        PyErr_SetString(PyExc_ValueError, "delete_qVector: this vector is not one that new_qVector made, or it has"
                                          " been deleted already.");
        return nullptr;
    }
    delete vector.object;
    return none();
}

// qVector_get(vector) -> (x, y, z)
PyObject* vectorGet(PyObject*, PyObject* args)
{
    return ofObject<qVector>(args, "s:qVector_get", [](qVector& vector) { return toPython(vector); });
}

// qVector_set(vector, x, y, z) -> 1
PyObject* vectorSet(PyObject*, PyObject* args)
{
    Object<qVector> vector;
    double numbers[3];
    float components[3];
    if (!PyArg_ParseTuple(args, "sddd:qVector_set", &vector.text, &numbers[0], &numbers[1], &numbers[2])
        || !decode("qVector_set", vector) || !toComponents("qVector_set", 2, numbers, components))
        return nullptr;
    return toPython(vector->set(components[0], components[1], components[2]));
}

}   // namespace functions
