// Scripts.
#include "Scripts.h"

#include "Results.h"

#include "qc/qcMessages.h"
#include "qc/qcPy.h"

#include <new>
#include <string>
#include <utility>

namespace {

// The interpreter's lock, for as long as the object lives.
class Lock {
public:
    Lock() : state(PyGILState_Ensure()) {}
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { PyGILState_Release(state); }

private:
    PyGILState_STATE state;
};

// Lines end with "\n", the last one too: the oldest interpreters take no others.
std::string withPlainLineEnds(const char* source)
{
    std::string lines;
    for (const char* c = source; *c; ++c)
        if (*c != '\r')
            lines += *c;
        else if (c[1] != '\n')
            lines += '\n';
    return lines + "\n";
}

// Null with an exception set.
PyObject* run(const char* source)
{
    PyObject* main = PyImport_AddModule("__main__");   // the interpreter's
    if (!main)
        return nullptr;
    PyObject* names = PyModule_GetDict(main);
    return PyRun_String(withPlainLineEnds(source).c_str(), Py_file_input, names, names);
}

// A text for a message; a zero byte, which would end it, is written out. Empty with an exception set.
std::string textOf(PyObject* text)
{
    const Reference bytes(text && PyStr_Check(text) ? pyTextBytes(text, "backslashreplace") : nullptr);
    if (!bytes)
        return "";
    std::string whole(PyBytes_AsString(bytes.get()), static_cast<std::size_t>(PyBytes_Size(bytes.get())));
    for (std::size_t i; (i = whole.find('\0')) != std::string::npos;)
        whole.replace(i, 1, "\\x00");
    return whole;
}

// What the interpreter would print of an exception. Empty when that fails, with an exception set or not.
std::string describe(PyObject* type, PyObject* value, PyObject* trace)
{
    const Reference module(PyImport_ImportModule("traceback"));
    const Reference format(module ? PyObject_GetAttrString(module.get(), "format_exception") : nullptr);
    const Reference lines(format ? PyObject_CallFunctionObjArgs(format.get(), type, value ? value : Py_None,
                                                                trace ? trace : Py_None, nullptr)
                                 : nullptr);
    if (!lines || !PyList_Check(lines.get()))
        return "";
    std::string whole;
    for (Py_ssize_t i = 0; i < PyList_Size(lines.get()); ++i)
        whole += textOf(PyList_GetItem(lines.get(), i));
    return whole;
}

bool interrupted = false;   // a script, by the keyboard

// Reports the exception that is set, and clears it. Nothing that a script raises ends the process.
void reportException()
{
    if (!PyErr_Occurred()) {   // as the interpreter's parser leaves it when memory runs out
        error("cannot run a script: out of memory.");
        return;
    }
    if (PyErr_ExceptionMatches(PyExc_KeyboardInterrupt))
        interrupted = true;
    PyObject *type = nullptr, *value = nullptr, *trace = nullptr;
    PyErr_Fetch(&type, &value, &trace);
    PyErr_NormalizeException(&type, &value, &trace);
    const Reference ownedType(type), ownedValue(value), ownedTrace(trace);

    std::string text;
    try {
        text = describe(type, value, trace);
    } catch (const std::bad_alloc&) {
        text.clear();
    }
    PyErr_Clear();
    if (text.empty())   // as when there is no memory or stack left to do more
        error("%s in a script; no traceback can be made of it\n",
              PyType_Check(type) ? reinterpret_cast<PyTypeObject*>(type)->tp_name : "an exception");
    else
        error("%s", text.c_str());
}

// @return 1; 0 after an error message
int runScript(const char* source, void*)
{
    if (!Py_IsInitialized())
        return error("cannot run a script: the Python interpreter has ended.");
    const Lock lock;
    try {
        const Reference result(run(source));
        if (result)
            return 1;
        reportException();
        return 0;
    } catch (const std::bad_alloc&) {   // the host calls this: nothing may be thrown
        return error("cannot run a script: out of memory.");
    }
}

}   // namespace

void scripts::serve()
{
    qcPy::registerInterpreter(runScript, nullptr);
}

void scripts::end()
{
    qcPy::registerInterpreter(nullptr, nullptr);
}

bool scripts::takeInterrupt()
{
    return std::exchange(interrupted, false);
}
