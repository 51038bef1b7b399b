// Python, from 2.6 on: the only place that knows its versions.
//
// py3c gives the names that the versions share: PyStr_* is str everywhere, PyInt_* the plain integer,
// MODULE_INIT_FUNC the entry. What is here comes on top.
#pragma once

#include <Python.h>   // before all others, as its manual demands
#include <py3c.h>

#include <cstddef>

// A C++ program links the library without Python, and so without what the module part needs of it: those
// names are weak. Inside an interpreter they are there. A test looks through the library's symbols.
#pragma weak PyArg_ParseTuple
#pragma weak PyDict_SetItemString
#pragma weak PyErr_ExceptionMatches
#pragma weak PyErr_Format
#pragma weak PyErr_Occurred
#pragma weak PyErr_SetString
#pragma weak PyExc_MemoryError
#pragma weak PyExc_NameError
#pragma weak PyExc_OverflowError
#pragma weak PyExc_RuntimeError
#pragma weak PyExc_TypeError
#pragma weak PyExc_ValueError
#pragma weak PyFloat_AsDouble
#pragma weak PyFloat_FromDouble
#pragma weak PyLong_AsVoidPtr
#pragma weak PyModule_GetDict
#pragma weak PyType_Ready
#pragma weak _PyObject_New
#pragma weak PyType_Type
#pragma weak _Py_NoneStruct
#if PY_MAJOR_VERSION >= 3
#pragma weak PyLong_AsLong
#pragma weak PyModule_Create2
#pragma weak PyUnicode_AsLatin1String
#pragma weak PyLong_FromLong
#pragma weak PyUnicode_AsUTF8
#pragma weak PyUnicode_DecodeLatin1
#pragma weak PyUnicode_DecodeUTF8
#pragma weak PyUnicode_FromString
#pragma weak PyBytes_AsString
#pragma weak PyBytes_Size
#pragma weak _Py_Dealloc
#else
#pragma weak PyInt_AsLong
#pragma weak PyInt_FromLong
#pragma weak PyString_AsString
#pragma weak PyString_Concat
#pragma weak PyString_FromString
#pragma weak PyString_FromStringAndSize
#pragma weak PyString_Size
#pragma weak Py_InitModule4
#pragma weak Py_InitModule4_64
#endif

/// The entry of a module, which an interpreter has to find in a library that hides its names.
// NOLINTBEGIN(bugprone-macro-parentheses): a name that is pasted takes none
#if PY_MAJOR_VERSION >= 3
#define DECLARE_MODULE_INIT(name) extern "C" __attribute__((visibility("default"))) PyObject* PyInit_##name()
#else
#define DECLARE_MODULE_INIT(name) extern "C" __attribute__((visibility("default"))) void init##name()
#endif
// NOLINTEND(bugprone-macro-parentheses)

/// Gives up a module that could not be initialised; null too. @return null
inline PyObject* pyDropModule(PyObject* module)
{
#if PY_MAJOR_VERSION >= 3
    Py_XDECREF(module);
#else
    (void)module;   // the interpreter's
#endif
    return nullptr;
}

/// Whether an object is an integer of any width.
inline bool pyIsInteger(PyObject* object)
{
#if PY_MAJOR_VERSION >= 3
    return PyLong_Check(object);
#else
    return PyInt_Check(object) || PyLong_Check(object);
#endif
}

/// A text of one byte; empty for a zero.
inline PyObject* pyCharacter(char c)
{
#if PY_MAJOR_VERSION >= 3
    return PyUnicode_DecodeLatin1(&c, c ? 1 : 0, nullptr);
#else
    return PyString_FromStringAndSize(&c, c ? 1 : 0);
#endif
}

/// The first byte of a text; a zero for an empty one. @return false with an exception set, when the
/// object is no text or its first character no byte
inline bool pyFirstByte(PyObject* text, char& c)
{
#if PY_MAJOR_VERSION >= 3
    PyObject* bytes = PyUnicode_AsLatin1String(text);   // refuses what is no text
    if (!bytes)
        return false;
    c = PyBytes_Size(bytes) > 0 ? PyBytes_AsString(bytes)[0] : '\0';
    Py_DECREF(bytes);
    return true;
#else
    const char* bytes = PyString_AsString(text);
    if (!bytes)
        return false;
    c = bytes[0];
    return true;
#endif
}

/// A text of bytes that are UTF-8. Where Python's texts are no bytes, other bytes come as the lone
/// surrogates U+DC80 to U+DCFF, so that none is lost and pyTextBytes() gives all of them back.
inline PyObject* pyText(const char* bytes, std::size_t size)
{
#if PY_MAJOR_VERSION >= 3
    return PyUnicode_DecodeUTF8(bytes, static_cast<Py_ssize_t>(size), "surrogateescape");
#else
    return PyString_FromStringAndSize(bytes, static_cast<Py_ssize_t>(size));
#endif
}

/// A text, one that PyStr_Check() accepts, as a new bytes object in UTF-8.
/// @param errors  what becomes of characters without bytes: "surrogateescape" turns those of pyText()
///                back and refuses others, "backslashreplace" describes all
inline PyObject* pyTextBytes(PyObject* text, const char* errors)
{
#if PY_MAJOR_VERSION >= 3
    return PyUnicode_AsEncodedString(text, "utf-8", errors);
#else
    (void)errors;
    Py_INCREF(text);
    return text;
#endif
}

/// For "O&" of the argument parser: a file's name, text or bytes, as a new bytes object in the encoding
/// of file names. @param bytes  a PyObject**
inline int pyFileName(PyObject* object, void* bytes)
{
#if PY_MAJOR_VERSION >= 3
    return PyUnicode_FSConverter(object, bytes);
#else
    PyObject* name =
        PyUnicode_Check(object) ? PyUnicode_AsEncodedString(object, Py_FileSystemDefaultEncoding, nullptr) : object;
    if (!name)
        return 0;
    char* text;
    const bool good = PyString_AsStringAndSize(name, &text, nullptr) == 0;   // refuses a zero byte within
    if (name == object && good)
        Py_INCREF(name);
    if (name != object && !good)
        Py_DECREF(name);
    if (good)
        *static_cast<PyObject**>(bytes) = name;
    return good;
#endif
}
