// Wrapping: what the functions of a flat module share: decoding their arguments and building results.
//
//   PyObject* getSiteLoad(PyObject*, PyObject* args)
//   {
//       Pointer<qmStaticStrength> analysis;
//       Pointer<qcSite> site;
//       Object<qVector> load;
//       if (!PyArg_ParseTuple(args, "sss:qmStaticStrength_getSiteLoad", &analysis.text, &site.text, &load.text)
//           || !decode("qmStaticStrength_getSiteLoad", analysis, site, load))
//           return nullptr;
//       return toPython(analysis->getSiteLoad(site, *load));
//   }
#pragma once

#include "PyCompat.h"

#include "PointerStrings.h"

#include <cstring>
#include <exception>
#include <memory>

/// A function of a module. @param  the module or null; the argument tuple
using PyFunction = PyObject*(PyObject*, PyObject*);

/// Sets a MemoryError. @return null
PyObject* outOfMemory();

/// Sets the Python exception for the C++ one that is being handled: MemoryError or RuntimeError. @return null
PyObject* toPythonException();

/// A function of a module's table: no exception crosses into the interpreter, which would end the process.
template <PyFunction* function> PyObject* guarded(PyObject* module, PyObject* args)
{
    try {
        return function(module, args);
    } catch (const std::exception&) {
        return toPythonException();
    }
}

/// A row of a module's table.
template <PyFunction* function> constexpr PyMethodDef row(const char* name, const char* documentation)
{
    return {name, guarded<function>, METH_VARARGS, documentation};
}

struct ReleaseReference {
    void operator()(PyObject* object) const { Py_DECREF(object); }
};
/// A reference of one's own; null after a failure.
using Reference = std::unique_ptr<PyObject, ReleaseReference>;

/// The type name in pointer strings to a T; each module says it for its own types.
template <class T> const char* pointerType();

/// An argument that is a pointer string, "NULL" included.
template <class T> struct Pointer {
    char* text = nullptr;   // the parser's
    T* object = nullptr;

    operator T*() const { return object; }
    T* operator->() const { return object; }
};

/// An argument that is the pointer string of an object: "NULL" is refused.
template <class T> struct Object : Pointer<T> {
    T& operator*() const { return *this->object; }
};

/// Sets the exception for an argument of another type. @param position  from 1  @return false
bool refuseType(int position, const char* function, const char* expected);

/// Sets the exception for a "NULL" where an object is needed. @return false
bool refuseNull(int position, const char* function, const char* expected);

template <class T> bool decodeOne(const char* function, int position, Pointer<T>& argument)
{
    void* address;
    if (!pointers::decode(argument.text, pointerType<T>(), address))
        return refuseType(position, function, pointerType<T>());
    argument.object = static_cast<T*>(address);
    return true;
}

template <class T> bool decodeOne(const char* function, int position, Object<T>& argument)
{
    Pointer<T>& pointer = argument;
    return decodeOne(function, position, pointer)
           && (argument.object || refuseNull(position, function, pointerType<T>()));
}

/// Decodes the pointer arguments of a function, which come first and in order. @return false with an exception set
template <class... Argument> bool decode(const char* function, Argument&... arguments)
{
    int position = 0;
    return (decodeOne(function, ++position, arguments) && ...);
}

inline PyObject* none()
{
    Py_INCREF(Py_None);
    return Py_None;
}
inline PyObject* toPython(int number)
{
    return PyInt_FromLong(number);
}
inline PyObject* toPython(float number)
{
    return PyFloat_FromDouble(double(number));
}
inline PyObject* toPython(double number)
{
    return PyFloat_FromDouble(number);
}
/// A text, whatever its bytes; None for a null one.
inline PyObject* toPython(const char* text)
{
    return text ? pyText(text, std::strlen(text)) : none();
}
inline PyObject* toPython(const std::string& text)
{
    return pyText(text.data(), text.size());
}
/// The pointer string of an address; null with an exception set. Throws nothing.
PyObject* addressToPython(const void* address, const char* typeName);

/// The pointer string of an object; null with an exception set. Throws nothing, so that what was made for
/// Python can be given back when its name cannot be made.
template <class T> PyObject* pointerToPython(const T* object)
{
    return addressToPython(object, pointerType<T>());
}
