// Pointer library: making, reading, writing, moving and renaming plain pointers from Python.
#include "Arrays.h"
#include "Functions.h"
#include "wrapping/Wrapping.h"

#include <cstdint>
#include <cstring>

namespace {

PyObject* refuse(const char* message)
{
    PyErr_SetString(PyExc_TypeError, message);
    return nullptr;
}

// The text of an argument that has to be a pointer string of any type. @return null, without an
// exception, when it is none
const char* pointerText(PyObject* argument, void*& address)
{
    const char* text = PyStr_Check(argument) ? PyStr_AsString(argument) : nullptr;
    return text && pointers::decode(text, nullptr, address) ? text : nullptr;
}

/// How an element type is read and written. A "long" has 4 bytes on every platform.
struct Element {
    const char* type;          // as a caller declares it
    const char* pointerType;   // in pointer strings
    int size;
    PyObject* (*get)(const void* array, int i);
    bool (*set)(void* array, int i, PyObject* value);   // false with an exception set
    void* (*make)(int n);
    void (*destroy)(void* array);
};

template <class T> PyObject* getInteger(const void* array, int i)
{
    return PyInt_FromLong(static_cast<const T*>(array)[i]);
}
template <class T> bool setInteger(void* array, int i, PyObject* value)
{
    const long number = PyInt_AsLong(value);
    if (number == -1 && PyErr_Occurred())
        return false;
    const T narrowed = static_cast<T>(number);
    if (narrowed != number) {
        PyErr_SetString(PyExc_OverflowError, "integer does not fit into the element");
        return false;
    }
    static_cast<T*>(array)[i] = narrowed;
    return true;
}
template <class T> PyObject* getReal(const void* array, int i)
{
    return PyFloat_FromDouble(double(static_cast<const T*>(array)[i]));
}
template <class T> bool setReal(void* array, int i, PyObject* value)
{
    const double number = PyFloat_AsDouble(value);
    if (number == -1.0 && PyErr_Occurred())
        return false;
    static_cast<T*>(array)[i] = static_cast<T>(number);
    return true;
}
PyObject* getCharacter(const void* array, int i)
{
    return pyCharacter(static_cast<const char*>(array)[i]);
}
bool setCharacter(void* array, int i, PyObject* value)
{
    return pyFirstByte(value, static_cast<char*>(array)[i]);
}
PyObject* getText(const void* array, int i)
{
    return toPython(arrays::textOf(static_cast<char* const*>(array)[i]));
}
bool setText(void* array, int i, PyObject* value)
{
    const char* text = PyStr_AsString(value);
    if (text && !arrays::setText(static_cast<char**>(array)[i], text))
        outOfMemory();
    return !PyErr_Occurred();
}

template <class T> void* make(int n)
{
    T* array = arrays::make<T>(n);
    if (array)
        std::memset(array, 0, sizeof(T) * static_cast<std::size_t>(n));
    return array;
}
template <class T> void destroy(void* array)
{
    arrays::destroy(static_cast<T*>(array));
}

const Element elements[] = {
    {"int", "_int_p", 4, getInteger<int>, setInteger<int>, make<int>, destroy<int>},
    {"double", "_double_p", 8, getReal<double>, setReal<double>, make<double>, destroy<double>},
    {"short", "_short_p", 2, getInteger<short>, setInteger<short>, make<short>, destroy<short>},
    {"long", "_long_p", 4, getInteger<std::int32_t>, setInteger<std::int32_t>, make<std::int32_t>,
     destroy<std::int32_t>},
    {"float", "_float_p", 4, getReal<float>, setReal<float>, make<float>, destroy<float>},
    {"char", "_char_p", 1, getCharacter, setCharacter, make<char>, destroy<char>},
    {"char *", "_char_pp", 0, getText, setText, make<char*>, destroy<char*>},   // not for ptradd
};

const Element* elementDeclared(const char* type)
{
    for (const Element& element : elements)
        if (std::strcmp(element.type, type) == 0)
            return &element;
    return nullptr;
}

bool isUntyped(const char* pointer)
{
    return *pointers::typeNameIn(pointer) == '\0';
}

// What a pointer string points to: its own type or one that this stands for.
const Element* elementPointedTo(const char* pointer)
{
    void* address;
    for (const Element& element : elements)
        if (pointers::decode(pointer, element.pointerType, address))
            return &element;
    return nullptr;
}

}   // namespace

namespace functions {

// ptrmap(type, type) -> None; each then stands for the other
PyObject* ptrmap(PyObject*, PyObject* args)
{
    char *first, *second;
    if (!PyArg_ParseTuple(args, "ss:ptrmap", &first, &second))
        return nullptr;
    const std::string one = pointers::typeNameOf(first), other = pointers::typeNameOf(second);
    pointers::registerType(one.c_str(), other.c_str(), nullptr);
    pointers::registerType(other.c_str(), one.c_str(), nullptr);
    return none();
}

// ptradd(pointer, n) -> the pointer n elements on; a pointer without a type moves by bytes
PyObject* ptradd(PyObject*, PyObject* args)
{
    PyObject* argument;
    int n;
    if (!PyArg_ParseTuple(args, "Oi:ptradd", &argument, &n))
        return nullptr;
    void* address;
    const char* pointer = pointerText(argument, address);
    // "NULL" has no type, and so moves by bytes
    const Element* element = pointer && !isUntyped(pointer) ? elementPointedTo(pointer) : nullptr;
    const int step = element ? element->size : pointer && isUntyped(pointer) ? 1 : 0;
    if (step == 0)
        return refuse("Type error in ptradd. Argument is not a valid pointer value.");
    const std::uintptr_t moved =
        reinterpret_cast<std::uintptr_t>(address) + static_cast<std::uintptr_t>(std::intptr_t(n) * step);
    return toPython(pointers::encodeTyped(moved, pointers::typeNameIn(pointer)));
}

// ptrfree(pointer) -> None, the array is freed, texts with it
PyObject* ptrfree(PyObject*, PyObject* args)
{
    PyObject* argument;
    if (!PyArg_ParseTuple(args, "O:ptrfree", &argument))
        return nullptr;
    void* address;
    const char* pointer = pointerText(argument, address);
    const Element* element = pointer ? elementPointedTo(pointer) : nullptr;
    if (!element && !(pointer && isUntyped(pointer)))   // an object of the host, say
        return refuse("Type error in ptrfree. Argument is not a valid pointer value.");
    if (address)
        (element ? element->destroy : destroy<char>)(address);
    return none();
}

// ptrcreate(type, value, n=1) -> a new array of n elements, all of that value; 0 or "" without one
PyObject* ptrcreate(PyObject*, PyObject* args)
{
    char* type;
    PyObject* value = nullptr;
    int n = 1;
    if (!PyArg_ParseTuple(args, "s|Oi:ptrcreate", &type, &value, &n))
        return nullptr;
    const Element* element = elementDeclared(type);
    if (!element)
        return refuse("Unable to create unknown datatype.");
    void* array = element->make(n);
    bool filled = array != nullptr;
    for (int i = 0; value && filled && i < n; ++i)
        filled = element->set(array, i, value);
    PyObject* result = filled ? addressToPython(array, element->pointerType) : nullptr;
    if (result)
        return result;
    if (array)
        element->destroy(array);
    if (!array || PyErr_ExceptionMatches(PyExc_MemoryError))
        PyErr_SetString(PyExc_MemoryError, "Out of memory in swig_create.");
    return nullptr;
}

// ptrset(pointer, value, i=0, type) -> None, the value stored as element i
PyObject* ptrset(PyObject*, PyObject* args)
{
    PyObject *argument, *value;
    int i = 0;
    char* type = nullptr;
    if (!PyArg_ParseTuple(args, "OO|is:ptrset", &argument, &value, &i, &type))
        return nullptr;
    void* address;
    const char* pointer = pointerText(argument, address);
    if (!pointer)
        return refuse("Type error in ptrset. Argument is not a valid pointer value.");
    if (!address)
        return refuse("Unable to set NULL pointer.");
    const Element* element = type ? elementDeclared(type) : elementPointedTo(pointer);
    if (!element)
        return refuse("Unable to set unsupported datatype.");
    return element->set(address, i, value) ? none() : nullptr;
}

// ptrvalue(pointer, i=0, type) -> element i
PyObject* ptrvalue(PyObject*, PyObject* args)
{
    PyObject* argument;
    int i = 0;
    char* type = nullptr;
    if (!PyArg_ParseTuple(args, "O|is:ptrvalue", &argument, &i, &type))
        return nullptr;
    void* address;
    const char* pointer = pointerText(argument, address);
    if (!pointer)
        return refuse("Type error in ptrvalue. Argument is not a valid pointer value.");
    if (!address)
        return refuse("Unable to dereference NULL pointer.");
    const Element* element = type ? elementDeclared(type) : elementPointedTo(pointer);
    if (!element)
        return refuse("Unable to dereference unsupported datatype.");
    return element->get(address, i);
}

// ptrcast(pointer or address, type) -> the address as a pointer of that type; "_0" of it for null
PyObject* ptrcast(PyObject*, PyObject* args)
{
    PyObject* argument;
    char* type;
    if (!PyArg_ParseTuple(args, "Os:ptrcast", &argument, &type))
        return nullptr;
    void* address = nullptr;
    if (pyIsInteger(argument))
        address = PyLong_AsVoidPtr(argument);
    else if (!pointerText(argument, address))
        return refuse("Type error in ptrcast. Argument is not a valid pointer value.");
    if (PyErr_Occurred())   // an integer that is no address
        return refuse("Type error in ptrcast. Argument is not a valid pointer value.");
    return toPython(
        pointers::encodeTyped(reinterpret_cast<std::uintptr_t>(address), pointers::typeNameOf(type).c_str()));
}

}   // namespace functions
