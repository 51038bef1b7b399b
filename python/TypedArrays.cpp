// Typed arrays: plain arrays of texts, floats, doubles and ints, made and read from Python.
//
// An index is not checked. An array of texts ends with a null entry of its own, past the last element.
#include "Arrays.h"
#include "Functions.h"
#include "wrapping/Wrapping.h"

template <> inline const char* pointerType<int>()
{
    return "_int_p";
}
template <> inline const char* pointerType<float>()
{
    return "_float_p";
}
template <> inline const char* pointerType<double>()
{
    return "_double_p";
}
template <> inline const char* pointerType<char*>()
{
    return "_char_pp";
}

namespace {

// Decodes the array, the first argument, which may not be null. @return null with an exception set
template <class T> T* arrayOf(const char* function, Pointer<T>& array)
{
    if (!decode(function, array))
        return nullptr;
    if (!array)
        PyErr_SetString(PyExc_ValueError, "Received a NULL Pointer");
    return array;
}

template <class T> PyObject* make(int n)
{
    arrays::Owned<T> array(arrays::make<T>(n));
    if (!array)
        return outOfMemory();
    PyObject* result = pointerToPython(array.get());
    if (result)
        (void)array.release();   // Python's from now on
    return result;   // NOLINT(clang-analyzer-unix.Malloc): by its text Python has the array, which is thus no leak
}

template <class T> PyObject* get(const char* function, const char* format, PyObject* args)
{
    Pointer<T> array;
    int i;
    if (!PyArg_ParseTuple(args, format, &array.text, &i) || !arrayOf(function, array))
        return nullptr;
    return toPython(array.object[i]);
}

template <class T> PyObject* set(const char* function, const char* format, PyObject* args)
{
    Pointer<T> array;
    int i;
    T value;
    if (!PyArg_ParseTuple(args, format, &array.text, &i, &value) || !arrayOf(function, array))
        return nullptr;
    PyObject* result = toPython(value);   // first: without memory for it the array stays as it was
    if (result)
        array.object[i] = value;
    return result;
}

template <class T> PyObject* destroy(const char* function, const char* format, PyObject* args)
{
    Pointer<T> array;
    if (!PyArg_ParseTuple(args, format, &array.text) || !arrayOf(function, array))
        return nullptr;
    arrays::destroy(array.object);
    return none();
}

template <class T> PyObject* make(const char* format, PyObject* args)
{
    int n;
    return PyArg_ParseTuple(args, format, &n) ? make<T>(n) : nullptr;
}

}   // namespace

namespace functions {

PyObject* stringSet(PyObject*, PyObject* args)
{
    Pointer<char*> array;
    int i;
    char* text;
    if (!PyArg_ParseTuple(args, "sis:string_set", &array.text, &i, &text) || !arrayOf("string_set", array))
        return nullptr;
    Reference result(toPython(text));   // first: without memory for it the array stays as it was
    if (!result)
        return nullptr;
    return arrays::setText(array.object[i], text) ? result.release() : outOfMemory();
}
PyObject* stringGet(PyObject*, PyObject* args)
{
    Pointer<char*> array;
    int i;
    if (!PyArg_ParseTuple(args, "si:string_get", &array.text, &i) || !arrayOf("string_get", array))
        return nullptr;
    return toPython(arrays::textOf(array.object[i]));
}
PyObject* stringDestroy(PyObject*, PyObject* args)
{
    return destroy<char*>("string_destroy", "s:string_destroy", args);
}
PyObject* stringArray(PyObject*, PyObject* args)
{
    return make<char*>("i:string_array", args);
}

PyObject* floatSet(PyObject*, PyObject* args)
{
    return set<float>("float_set", "sif:float_set", args);
}
PyObject* floatGet(PyObject*, PyObject* args)
{
    return get<float>("float_get", "si:float_get", args);
}
PyObject* floatDestroy(PyObject*, PyObject* args)
{
    return destroy<float>("float_destroy", "s:float_destroy", args);
}
PyObject* floatArray(PyObject*, PyObject* args)
{
    return make<float>("i:float_array", args);
}

PyObject* doubleSet(PyObject*, PyObject* args)
{
    return set<double>("double_set", "sid:double_set", args);
}
PyObject* doubleGet(PyObject*, PyObject* args)
{
    return get<double>("double_get", "si:double_get", args);
}
PyObject* doubleDestroy(PyObject*, PyObject* args)
{
    return destroy<double>("double_destroy", "s:double_destroy", args);
}
PyObject* doubleArray(PyObject*, PyObject* args)
{
    return make<double>("i:double_array", args);
}

PyObject* intSet(PyObject*, PyObject* args)
{
    return set<int>("int_set", "sii:int_set", args);
}
PyObject* intGet(PyObject*, PyObject* args)
{
    return get<int>("int_get", "si:int_get", args);
}
PyObject* intDestroy(PyObject*, PyObject* args)
{
    return destroy<int>("int_destroy", "s:int_destroy", args);
}
PyObject* intArray(PyObject*, PyObject* args)
{
    return make<int>("i:int_array", args);
}

}   // namespace functions
